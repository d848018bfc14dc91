#include "RadiusPacketParser/RadiusPktCommon.h"

#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "ZoCrypto/FaultSeam.h"

#include "tests/support/CapturingSink.h"
#include "tests/support/CatchAssertion.h"
#include "tests/support/PacketMaker.h"
#include "tests/support/SharedSecrets.h"
#include "tests/support/Vectors.h"
#include "tests/support/Walk.h"

namespace {

using namespace RadiusPktParserBase;
using TestSupport::assertionTextOf;
using TestSupport::ByteVector;
using TestSupport::CapturingSink;
using TestSupport::countingBytes;
using TestSupport::errorRecord;
using TestSupport::joined;
using TestSupport::Records;
using TestSupport::testReqAuth;
using TestSupport::testSecret;
using TestSupport::verdaBytes;
using Verda::U32;
using Verda::U8;
using ZoCrypto::FaultSeam;
using ZoCrypto::Primitive;

const std::set<U32> requests{1, 4, 12, 40, 43};
const ByteVector salt{0x80, 0x17};

/// Hides or reveals a copy of `data` and returns it with the result.
struct Transformed {
  ErrorMsg result;
  ByteVector data;
};

Transformed transform(ByteVector data, U8 method, bool isTagged, bool encrypt,
                      const ByteVector& authenticator = testReqAuth,
                      const std::string& secret = testSecret) {
  const ErrorMsg result = encryptHelper(data.data(), static_cast<U32>(data.size()), secret,
                                        verdaBytes(authenticator), method, isTagged, encrypt);
  return {result, data};
}

/// What hiding gives, by the formula.
ByteVector hiddenByFormula(const ByteVector& data, U8 method, bool isTagged,
                           const std::string& secret = testSecret) {
  const std::size_t clear = (isTagged ? 1U : 0U) + (method == saltedMethod ? 2U : 0U);
  if (data.size() < clear) {
    return data;
  }
  const std::span<const U8> front = std::span(data).first(clear);
  const std::span<const U8> saltBytes = front.subspan(isTagged ? 1 : 0);
  return joined({front, TestSupport::hidden(std::span(data).subspan(clear),
                                            TestSupport::bytesOf(secret), testReqAuth, saltBytes)});
}

// ---- The keystream ----

TEST(HidingHelper, HidesEveryLengthAsTheFormulaSays) {
  for (U8 method : {userPasswordMethod, saltedMethod}) {
    for (bool isTagged : {false, true}) {
      for (std::size_t length = 0; length <= 50; ++length) {
        SCOPED_TRACE(testing::Message()
                     << "method " << int{method} << " tagged " << isTagged << " length " << length);
        const ByteVector plain = countingBytes(length, 0x41);
        const Transformed hidden = transform(plain, method, isTagged, true);
        EXPECT_EQ(hidden.result, ErrorMsg::success);
        EXPECT_EQ(hidden.data, hiddenByFormula(plain, method, isTagged));
      }
    }
  }
}

TEST(HidingHelper, RevealsWhatItHidForEveryLength) {
  for (U8 method : {userPasswordMethod, saltedMethod}) {
    for (bool isTagged : {false, true}) {
      for (std::size_t length = 0; length <= 50; ++length) {
        const ByteVector plain = countingBytes(length, 0x41);
        const ByteVector hidden = transform(plain, method, isTagged, true).data;
        const Transformed revealed = transform(hidden, method, isTagged, false);
        EXPECT_EQ(revealed.result, ErrorMsg::success);
        EXPECT_EQ(revealed.data, plain) << "length " << length;
      }
    }
  }
}

TEST(HidingHelper, RevealsAfterTheHiddenBytesAndNotAfterThePlainOnes) {
  // The two directions differ from the second block on.
  const ByteVector plain = countingBytes(32, 0x41);
  EXPECT_NE(transform(plain, 1, false, true).data, transform(plain, 1, false, false).data);
}

TEST(HidingHelper, HidesTheLargestValue) {
  const ByteVector plain = countingBytes(253, 3);
  const ByteVector hidden = transform(plain, saltedMethod, true, true).data;
  EXPECT_EQ(hidden, hiddenByFormula(plain, saltedMethod, true));
  EXPECT_EQ(transform(hidden, saltedMethod, true, false).data, plain);
}

TEST(HidingHelper, LeavesTagAndSaltInTheClear) {
  const ByteVector plain = joined({ByteVector{0x01}, salt, countingBytes(16, 0x41)});
  const ByteVector hidden = transform(plain, saltedMethod, true, true).data;
  ASSERT_EQ(hidden.size(), plain.size());
  EXPECT_EQ(ByteVector(hidden.begin(), hidden.begin() + 3), (ByteVector{0x01, 0x80, 0x17}));
  for (std::size_t at = 3; at < plain.size(); ++at) {
    EXPECT_NE(hidden[at], plain[at]) << "byte " << at;
  }
}

TEST(HidingHelper, TakesTheSaltThatIsThereWhateverItIs) {
  for (U8 first : {U8{0x00}, U8{0x7f}, U8{0x80}, U8{0xff}}) {
    const ByteVector plain = joined({ByteVector{first, 0x01}, countingBytes(16, 0x41)});
    EXPECT_EQ(transform(plain, saltedMethod, false, true).data,
              hiddenByFormula(plain, saltedMethod, false));
  }
}

TEST(HidingHelper, LeavesAValueThatIsTooShortForTagAndSaltAlone) {
  for (bool isTagged : {false, true}) {
    const std::size_t clear = isTagged ? 3 : 2;
    for (std::size_t length = 0; length < clear; ++length) {
      for (bool encrypt : {false, true}) {
        const CapturingSink trace;
        const ByteVector data = countingBytes(length, 1);
        // Not even the authenticator is looked at.
        const Transformed same = transform(data, saltedMethod, isTagged, encrypt, {});
        EXPECT_EQ(same.result, ErrorMsg::success);
        EXPECT_EQ(same.data, data);
        EXPECT_EQ(trace.records(), Records());
      }
    }
  }
}

TEST(HidingHelper, TransformsNothingOfATagAndASaltAlone) {
  const ByteVector data{0x01, 0x80, 0x17};
  const Transformed same = transform(data, saltedMethod, true, false);
  EXPECT_EQ(same.result, ErrorMsg::success);
  EXPECT_EQ(same.data, data);
}

TEST(HidingHelper, LooksAtTheAuthenticatorWhenNothingStandsBehindTagAndSalt) {
  const CapturingSink trace;
  const ByteVector data{0x01, 0x80, 0x17};
  EXPECT_EQ(transform(data, saltedMethod, true, false, ByteVector(15)).result,
            ErrorMsg::invalidBytesCopied);
  EXPECT_EQ(transform({}, userPasswordMethod, false, false, {}).result,
            ErrorMsg::invalidBytesCopied);
  EXPECT_EQ(trace.texts(), (std::vector<std::string>{"Mismatch in bytes copied: 15, expected: 16",
                                                     "Mismatch in bytes copied: 0, expected: 16"}));
}

TEST(HidingHelper, TransformsOneByteBehindTagAndSalt) {
  const ByteVector data{0x01, 0x80, 0x17, 0x41};
  const Transformed hidden = transform(data, saltedMethod, true, true);
  EXPECT_EQ(hidden.data, hiddenByFormula(data, saltedMethod, true));
  EXPECT_NE(hidden.data, data);
}

TEST(HidingHelper, TakesEverySecret) {
  for (const auto& secret : TestSupport::sharedSecrets) {
    SCOPED_TRACE(secret.name);
    const ByteVector plain = countingBytes(32, 0x41);
    const ByteVector hidden = transform(plain, 1, false, true, testReqAuth, secret.given).data;
    EXPECT_EQ(hidden, hiddenByFormula(plain, 1, false, secret.counts));
    EXPECT_EQ(transform(hidden, 1, false, false, testReqAuth, secret.given).data, plain);
  }
}

TEST(HidingHelper, RefusesAnAuthenticatorOfLessThanSixteenBytes) {
  for (std::size_t size : {std::size_t{0}, std::size_t{1}, std::size_t{15}}) {
    const CapturingSink trace;
    const ByteVector plain = countingBytes(16, 0x41);
    const Transformed refused = transform(plain, 1, false, true, ByteVector(size));
    EXPECT_EQ(refused.result, ErrorMsg::invalidBytesCopied);
    EXPECT_EQ(refused.data, plain);
    EXPECT_EQ(trace.records(), (Records{errorRecord("", "encryptHelper",
                                                    "Mismatch in bytes copied: " +
                                                        std::to_string(size) + ", expected: 16")}));
  }
}

TEST(HidingHelper, TakesTheFirstSixteenBytesOfALongerAuthenticator) {
  const ByteVector plain = countingBytes(32, 0x41);
  EXPECT_EQ(transform(plain, 1, false, true, joined({testReqAuth, ByteVector{0xff}})).data,
            hiddenByFormula(plain, 1, false));
}

TEST(HidingHelper, ReportsAFailedMd5AtEachBlock) {
  const ByteVector plain = countingBytes(48, 0x41);
  const ByteVector hidden = hiddenByFormula(plain, 1, false);
  for (U32 block = 0; block < 3; ++block) {
    SCOPED_TRACE(block);
    const CapturingSink trace;
    FaultSeam::failIs(Primitive::md5, block);
    const Transformed failed = transform(plain, 1, false, true);
    FaultSeam::failDel();
    EXPECT_EQ(failed.result, ErrorMsg::md5GenerationFailed);
    EXPECT_EQ(trace.records(),
              (Records{errorRecord("", "md5Calculator", "MD5 digest of incorrect length: 0")}));
    // The blocks before the failure are hidden, those behind it are not touched.
    const std::ptrdiff_t done = std::ptrdiff_t{16} * block;
    EXPECT_EQ(failed.data, joined({ByteVector(hidden.begin(), hidden.begin() + done),
                                   ByteVector(plain.begin() + done, plain.end())}));
  }
}

// ---- Known answers of others ----

/// The value as the method hides it: padded, and for salted values salt and length byte in front.
ByteVector plainValueOf(const TestSupport::HiddenValue& known) {
  ByteVector plain = known.plain;
  if (known.kind == "salt") {
    plain.insert(plain.begin(), static_cast<U8>(known.plain.size()));
  }
  plain.resize(known.cipher.size());
  return joined({known.salt, plain});
}

U8 methodOf(const TestSupport::HiddenValue& known) {
  return known.kind == "salt" ? saltedMethod : userPasswordMethod;
}

TEST(HiddenValues, AreRevealedAndHiddenAsOthersDo) {
  ASSERT_EQ(TestSupport::hiddenValues().size(), TestSupport::hiddenValueCount);
  int checked = 0;
  for (const auto& known : TestSupport::hiddenValues()) {
    if (known.kind == "ascend-secret" || known.authenticator.size() != 16) {
      continue;
    }
    SCOPED_TRACE(known.source);
    const ByteVector value = joined({known.salt, known.cipher});
    const Transformed revealed =
        transform(value, methodOf(known), false, false, known.authenticator, known.secret);
    EXPECT_EQ(revealed.result, ErrorMsg::success);
    // What follows the text is padding, which is anybody's.
    const ByteVector plain = plainValueOf(known);
    const std::size_t textEnd =
        known.salt.size() + (known.kind == "salt" ? 1 : 0) + known.plain.size();
    EXPECT_TRUE(std::equal(plain.begin(), plain.begin() + static_cast<std::ptrdiff_t>(textEnd),
                           revealed.data.begin()));
    const Transformed hidden =
        transform(revealed.data, methodOf(known), false, true, known.authenticator, known.secret);
    EXPECT_EQ(hidden.data, value);
    ++checked;
  }
  EXPECT_EQ(checked, 10);
}

TEST(HiddenValues, AreHiddenWithZeroPaddingAsOthersDo) {
  int checked = 0;
  for (const auto& known : TestSupport::hiddenValues()) {
    if (known.kind != "user-password" || known.authenticator.size() != 16) {
      continue;
    }
    SCOPED_TRACE(known.source);
    const Transformed hidden = transform(plainValueOf(known), userPasswordMethod, false, true,
                                         known.authenticator, known.secret);
    EXPECT_EQ(hidden.data, known.cipher);
    ++checked;
  }
  EXPECT_EQ(checked, 8);
}

TEST(HiddenValues, AreRefusedWithAnAuthenticatorOfEightBytes) {
  int checked = 0;
  for (const auto& known : TestSupport::hiddenValues()) {
    if (known.authenticator.size() >= 16) {
      continue;
    }
    const CapturingSink trace;
    const ByteVector value = joined({known.salt, known.cipher});
    const Transformed refused =
        transform(value, methodOf(known), false, false, known.authenticator, known.secret);
    EXPECT_EQ(refused.result, ErrorMsg::invalidBytesCopied);
    EXPECT_EQ(refused.data, value);
    EXPECT_EQ(trace.texts(), std::vector<std::string>{"Mismatch in bytes copied: 8, expected: 16"});
    ++checked;
  }
  EXPECT_EQ(checked, 3);
}

TEST(HiddenValues, AreNotThoseOfASeventeenByteAuthenticator) {
  int checked = 0;
  for (const auto& known : TestSupport::hiddenValues()) {
    if (known.authenticator.size() <= 16) {
      continue;
    }
    const Transformed hidden = transform(plainValueOf(known), methodOf(known), false, true,
                                         known.authenticator, known.secret);
    EXPECT_EQ(hidden.result, ErrorMsg::success);
    EXPECT_NE(hidden.data, known.cipher);
    EXPECT_EQ(hidden.data,
              TestSupport::hidden(plainValueOf(known), TestSupport::bytesOf(known.secret),
                                  std::span(known.authenticator).first(16)));
    ++checked;
  }
  EXPECT_EQ(checked, 1);
}

// ---- The two entry points ----

enum class Direction { hide, reveal };

AttrInfo infoOf(U8 method, bool isTagged = false, bool isInDict = true) {
  AttrInfo info;
  info.encryptionType = method;
  info.isTagged = isTagged;
  info.isInDict = isInDict;
  return info;
}

/// An entry point at work on a unit (type, length and value) of its own.
struct Entry {
  Direction direction;
  U8 code = 2;
  ByteVector reqAuth = testReqAuth;
  Attribute key = standardAttribute(2);
  AttrInfo info = infoOf(userPasswordMethod);
  std::string headerAuthenticator = std::string(16, 'h');

  Transformed run(ByteVector unit) const {
    const auto hdr = radiusHdrFactory();
    hdr->codeIs(code);
    hdr->authenticatorIs(Verda::String(headerAuthenticator));
    auto* const operation = direction == Direction::hide ? &encryptAttribute : &decryptAttribute;
    const ErrorMsg result =
        operation(key, unit.data(), testSecret, verdaBytes(reqAuth), hdr, info, nullptr);
    return {result, unit};
  }
};

const ByteVector plainUnit = TestSupport::attributeBytes(2, countingBytes(20, 0x41));

/// `plainUnit` hidden under that authenticator.
ByteVector hiddenUnit(const ByteVector& authenticator) {
  return TestSupport::attributeBytes(
      2, TestSupport::hidden(countingBytes(20, 0x41), TestSupport::bytesOf(testSecret),
                             authenticator));
}

TEST(HidingEntries, TakeTheHeadersAuthenticatorOfARequestAndTheGivenOneOfAllOthers) {
  const ByteVector ofHeader = TestSupport::bytesOf(std::string(16, 'h'));
  for (U32 code = 0; code < 256; ++code) {
    SCOPED_TRACE(code);
    const bool isRequestCode = requests.contains(code);
    const ByteVector hidden = hiddenUnit(isRequestCode ? ofHeader : testReqAuth);
    Entry entry{.direction = Direction::hide,
                .code = static_cast<U8>(code),
                .reqAuth = isRequestCode ? ByteVector() : testReqAuth};
    const Transformed hiding = entry.run(plainUnit);
    EXPECT_EQ(hiding.result, ErrorMsg::success);
    EXPECT_EQ(hiding.data, hidden);
    entry.direction = Direction::reveal;
    const Transformed revealing = entry.run(hidden);
    EXPECT_EQ(revealing.result, ErrorMsg::success);
    EXPECT_EQ(revealing.data, plainUnit);
  }
}

TEST(HidingEntries, AssertTheRightRequestAuthenticatorEachWithItsOwnText) {
  for (U32 code = 0; code < 256; ++code) {
    SCOPED_TRACE(code);
    const bool isRequestCode = requests.contains(code);
    Entry entry{.direction = Direction::hide,
                .code = static_cast<U8>(code),
                .reqAuth = isRequestCode ? testReqAuth : ByteVector()};
    EXPECT_EQ(assertionTextOf([&] { entry.run(plainUnit); }),
              isRequestCode ? "Request authenticator found not NULL for request packet"
                            : "Request authenticator found NULL for response packet");
    entry.direction = Direction::reveal;
    EXPECT_EQ(assertionTextOf([&] { entry.run(plainUnit); }),
              isRequestCode ? "Request authenticator not NULL for request packet"
                            : "Request authenticator NULL for response packet");
  }
}

TEST(HidingEntries, AssertTheRequestAuthenticatorBeforeAnythingElse) {
  for (Direction direction : {Direction::hide, Direction::reveal}) {
    const Entry entry{.direction = direction, .reqAuth = {}, .info = infoOf(0, false, false)};
    const CapturingSink trace;
    EXPECT_TRUE(assertionTextOf([&] { entry.run(plainUnit); }).has_value());
    EXPECT_EQ(trace.records(), Records());
  }
}

TEST(HidingEntries, LeaveEveryOtherMethodAlone) {
  for (Direction direction : {Direction::hide, Direction::reveal}) {
    for (U32 method = 0; method < 256; ++method) {
      if (method == userPasswordMethod || method == saltedMethod) {
        continue;
      }
      const CapturingSink trace;
      const Entry entry{.direction = direction, .info = infoOf(static_cast<U8>(method))};
      const Transformed same = entry.run(plainUnit);
      EXPECT_EQ(same.result, ErrorMsg::success);
      EXPECT_EQ(same.data, plainUnit) << "method " << method;
      EXPECT_EQ(trace.records(), Records());
    }
  }
}

TEST(HidingEntries, KeepTagAndSaltOfASaltedValueInTheClear) {
  const ByteVector value = joined({ByteVector{0x1f}, salt, countingBytes(16, 0x41)});
  const ByteVector unit = TestSupport::attributeBytes(69, value);
  const Entry entry{.direction = Direction::hide,
                    .key = standardAttribute(69),
                    .info = infoOf(saltedMethod, true)};
  const Transformed hidden = entry.run(unit);
  EXPECT_EQ(hidden.data,
            TestSupport::attributeBytes(69, hiddenByFormula(value, saltedMethod, true)));
}

TEST(HidingEntries, LeaveTheBytesBehindTheUnitAlone) {
  for (Direction direction : {Direction::hide, Direction::reveal}) {
    const ByteVector unit = joined({plainUnit, ByteVector{1, 2, 3, 4}});
    const Transformed done = Entry{.direction = direction}.run(unit);
    EXPECT_EQ(ByteVector(done.data.end() - 4, done.data.end()), (ByteVector{1, 2, 3, 4}));
    EXPECT_NE(done.data, unit);
  }
}

TEST(HidingEntries, LeaveAUnitWhoseLengthHoldsNoValueAlone) {
  for (Direction direction : {Direction::hide, Direction::reveal}) {
    for (U8 length : {U8{0}, U8{1}, U8{2}}) {
      ByteVector unit = plainUnit;
      unit[1] = length;
      const Transformed same = Entry{.direction = direction}.run(unit);
      EXPECT_EQ(same.result, ErrorMsg::success);
      EXPECT_EQ(same.data, unit) << "length " << int{length};
    }
  }
}

TEST(HidingEntries, LeaveSaltedUnitsOfLengthTwoToFourAlone) {
  for (Direction direction : {Direction::hide, Direction::reveal}) {
    for (std::size_t value = 0; value < 3; ++value) {
      const ByteVector unit = TestSupport::attributeBytes(69, countingBytes(value, 1));
      const Entry entry{.direction = direction, .info = infoOf(saltedMethod, true)};
      const Transformed same = entry.run(unit);
      EXPECT_EQ(same.result, ErrorMsg::success);
      EXPECT_EQ(same.data, unit) << "length " << value + 2;
    }
  }
}

TEST(HidingEntries, TakeTheLongestUnit) {
  const ByteVector unit = TestSupport::attributeBytes(2, countingBytes(253, 0x41));
  const ByteVector hidden = Entry{.direction = Direction::hide}.run(unit).data;
  EXPECT_NE(hidden, unit);
  EXPECT_EQ(Entry{.direction = Direction::reveal}.run(hidden).data, unit);
}

TEST(HidingEntries, RefuseAnAuthenticatorOfLessThanSixteenBytes) {
  for (Direction direction : {Direction::hide, Direction::reveal}) {
    const CapturingSink trace;
    const Entry response{.direction = direction, .reqAuth = ByteVector(15)};
    EXPECT_EQ(response.run(plainUnit).result, ErrorMsg::invalidBytesCopied);
    EXPECT_EQ(response.run(plainUnit).data, plainUnit);
    const Entry request{
        .direction = direction, .code = 1, .reqAuth = {}, .headerAuthenticator = ""};
    EXPECT_EQ(request.run(plainUnit).result, ErrorMsg::invalidBytesCopied);
    EXPECT_EQ(trace.texts(),
              (std::vector<std::string>{"Mismatch in bytes copied: 15, expected: 16",
                                        "Mismatch in bytes copied: 15, expected: 16",
                                        "Mismatch in bytes copied: 0, expected: 16"}));
  }
}

TEST(HidingEntries, LookAtNoAuthenticatorWhenNothingIsHidden) {
  for (Direction direction : {Direction::hide, Direction::reveal}) {
    const CapturingSink trace;
    const Entry entry{.direction = direction, .reqAuth = ByteVector(1), .info = infoOf(0)};
    EXPECT_EQ(entry.run(plainUnit).result, ErrorMsg::success);
    EXPECT_EQ(trace.records(), Records());
  }
}

TEST(HidingEntries, ReportAFailedMd5) {
  for (Direction direction : {Direction::hide, Direction::reveal}) {
    const CapturingSink trace;
    FaultSeam::failIs(Primitive::md5);
    const Transformed failed = Entry{.direction = direction}.run(plainUnit);
    FaultSeam::failDel();
    EXPECT_EQ(failed.result, ErrorMsg::md5GenerationFailed);
    EXPECT_EQ(failed.data, plainUnit);
    EXPECT_EQ(trace.texts(), std::vector<std::string>{"MD5 digest of incorrect length: 0"});
  }
}

TEST(EncryptAttribute, DoesNotAskWhetherTheDictionaryKnowsTheAttribute) {
  const Entry entry{.direction = Direction::hide, .info = infoOf(userPasswordMethod, false, false)};
  EXPECT_EQ(entry.run(plainUnit).data, hiddenUnit(testReqAuth));
}

TEST(EncryptAttribute, HidesTheSubAttributesValueOfAVendorAttribute) {
  const ByteVector value = joined({salt, countingBytes(18, 0x41)});
  const ByteVector outer = TestSupport::vendorBytes(311, 16, value);
  const Entry entry{
      .direction = Direction::hide, .key = vendorAttribute(311, 16), .info = infoOf(saltedMethod)};
  const Transformed hidden = entry.run(outer);
  EXPECT_EQ(hidden.result, ErrorMsg::success);
  EXPECT_EQ(hidden.data,
            TestSupport::vendorBytes(311, 16, hiddenByFormula(value, saltedMethod, false)));
}

TEST(DecryptAttribute, TakesTheSubAttributeOfAVendorAttribute) {
  const ByteVector value = joined({salt, countingBytes(18, 0x41)});
  const ByteVector unit =
      TestSupport::attributeBytes(16, hiddenByFormula(value, saltedMethod, false));
  const Entry entry{.direction = Direction::reveal,
                    .key = vendorAttribute(311, 16),
                    .info = infoOf(saltedMethod)};
  const Transformed revealed = entry.run(unit);
  EXPECT_EQ(revealed.result, ErrorMsg::success);
  EXPECT_EQ(revealed.data, TestSupport::attributeBytes(16, value));
}

TEST(DecryptAttribute, LeavesAnAttributeThatIsNotInTheDictionaryAlone) {
  const CapturingSink trace;
  const Entry entry{.direction = Direction::reveal,
                    .key = vendorAttribute(4294967295, 255),
                    .info = infoOf(userPasswordMethod, false, false)};
  const Transformed same = entry.run(plainUnit);
  EXPECT_EQ(same.result, ErrorMsg::success);
  EXPECT_EQ(same.data, plainUnit);
  EXPECT_EQ(trace.records(),
            (Records{errorRecord("", "decryptAttribute",
                                 "Unknown Attribute, attrId: 26, vendorId: 4294967295, "
                                 "vendorAttrId: 255")}));
}

TEST(DecryptAttribute, SaysWhichStandardAttributeIsUnknown) {
  const CapturingSink trace;
  const Entry entry{.direction = Direction::reveal,
                    .key = standardAttribute(200),
                    .info = infoOf(0, false, false)};
  EXPECT_EQ(entry.run(plainUnit).result, ErrorMsg::success);
  EXPECT_EQ(trace.texts(), std::vector<std::string>{
                               "Unknown Attribute, attrId: 200, vendorId: 0, vendorAttrId: 0"});
}

}  // namespace
