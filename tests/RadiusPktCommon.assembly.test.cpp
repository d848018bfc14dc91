#include "RadiusPacketParser/RadiusPktCommon.h"

#include <algorithm>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "ZoCrypto/FaultSeam.h"

#include "tests/support/BuildRequest.h"
#include "tests/support/CapturingSink.h"
#include "tests/support/CatchAssertion.h"
#include "tests/support/Hex.h"
#include "tests/support/PacketMaker.h"
#include "tests/support/TestDictionary.h"
#include "tests/support/Walk.h"

namespace {

using RadiusPacketParser::RadiusAttributeType;
using namespace RadiusPktParserBase;
using TestSupport::attributeBytes;
using TestSupport::ByteVector;
using TestSupport::CapturedRecord;
using TestSupport::CapturingSink;
using TestSupport::countingBytes;
using TestSupport::DictionaryMaker;
using TestSupport::DictPtr;
using TestSupport::errorRecord;
using TestSupport::headerOf;
using TestSupport::hidden;
using TestSupport::joined;
using TestSupport::PacketMaker;
using TestSupport::pktOf;
using TestSupport::reqAuthFor;
using TestSupport::RequestMaker;
using TestSupport::testSecret;
using TestSupport::Values;
using TestSupport::vendorBytes;
using TestSupport::verdaBytes;
using Verda::Ptr;
using Verda::U16;
using Verda::U8;
using ZoCrypto::FaultSeam;
using ZoCrypto::Primitive;
using Records = std::vector<CapturedRecord>;
using Sizes = std::vector<std::size_t>;

constexpr U8 accessRequest = 1;
constexpr U8 accessAccept = 2;
constexpr U8 accountingRequest = 4;
constexpr U8 coaRequest = 43;

// ---- The dictionary of these tests, and values for it ----

const Attribute userName = standardAttribute(1);
const Attribute userPassword = standardAttribute(2);
const Attribute sessionTimeout = standardAttribute(27);
const Attribute tunnelPassword = standardAttribute(69);
const Attribute messageAuthenticator = standardAttribute(80);
const Attribute classOctets = standardAttribute(25);
const Attribute eapMessage = standardAttribute(79);
const Attribute otherConcat = standardAttribute(89);
const Attribute hiddenConcat = standardAttribute(90);
const Attribute taggedDate = standardAttribute(55);
const Attribute hiddenTaggedDate = standardAttribute(56);
const Attribute salted = standardAttribute(91);
const Attribute absent = standardAttribute(200);

const Attribute vendorText = vendorAttribute(9, 1);
const Attribute vendorNumber = vendorAttribute(9, 2);
const Attribute vendorConcat = vendorAttribute(9, 3);
const Attribute vendorSalted = vendorAttribute(9, 4);
const Attribute vendorTaggedDate = vendorAttribute(9, 5);
const Attribute vendorHiddenTaggedDate = vendorAttribute(9, 6);
const Attribute vendorOctets = vendorAttribute(9, 7);

const DictPtr& dictionary() {
  using Type = RadiusAttributeType;
  static const DictPtr made = DictionaryMaker()
                                  .add(1, Type::string)
                                  .add(2, Type::string, {.encrypt = 1})
                                  .add(25, Type::octets)
                                  .add(27, Type::integer)
                                  .add(55, Type::date, {.tag = true})
                                  .add(56, Type::date, {.tag = true, .encrypt = 1})
                                  .add(69, Type::string, {.tag = true, .encrypt = 2})
                                  .add(79, Type::octets, {.concat = true})
                                  .add(80, Type::octets)
                                  .add(89, Type::octets, {.concat = true})
                                  .add(90, Type::octets, {.concat = true, .encrypt = 1})
                                  .add(91, Type::octets, {.encrypt = 2})
                                  .addVendor(9, 1, Type::string)
                                  .addVendor(9, 2, Type::integer)
                                  .addVendor(9, 3, Type::octets, {.concat = true})
                                  .addVendor(9, 4, Type::octets, {.encrypt = 2})
                                  .addVendor(9, 5, Type::date, {.tag = true})
                                  .addVendor(9, 6, Type::date, {.tag = true, .encrypt = 1})
                                  .addVendor(9, 7, Type::octets)
                                  .make();
  return made;
}

AttrValue text(const char* value) {
  return Verda::String(value);
}

ByteVector textBytes(const std::string& value) {
  return TestSupport::bytesOf(value);
}

const AttrValue taggedNumber = TaggedInt{.value = 5, .tag = 1};
const AttrValue noOctets = Verda::Bytes();

AttrValue octets(const ByteVector& bytes) {
  return verdaBytes(bytes);
}

// ---- Building ----

/// How one build went.
struct Built {
  ErrorMsg result;
  ByteVector packet;
  Records records;

  std::vector<std::string> texts() const {
    std::vector<std::string> texts;
    for (const CapturedRecord& record : records) {
      texts.push_back(record.text);
    }
    return texts;
  }
};

Built outcomeOf(const Ptr<PktReturn>& built, const CapturingSink& trace) {
  EXPECT_EQ(built->errorMsg() == ErrorMsg::success, bool{built->pkt()});
  return {built->errorMsg(), built->pkt() ? TestSupport::bytesOf(built->pkt()) : ByteVector(),
          trace.records()};
}

Built build(U8 code, const RequestMaker& request) {
  const CapturingSink trace;
  return outcomeOf(buildPkt(nullptr, testSecret, verdaBytes(reqAuthFor(code)), headerOf(code),
                            request.make(), dictionary()),
                   trace);
}

/// Modifies a packet, which must not change.
Built modify(const ByteVector& packet, const RequestMaker& request) {
  const CapturingSink trace;
  const auto old = pktOf(packet);
  const Built built =
      outcomeOf(buildPkt(old, testSecret, verdaBytes(reqAuthFor(packet.empty() ? 1 : packet[0])),
                         nullptr, request.make(), dictionary()),
                trace);
  EXPECT_EQ(TestSupport::bytesOf(old), packet);
  return built;
}

void expectPacket(const Built& built, const PacketMaker& expected) {
  EXPECT_EQ(built.result, ErrorMsg::success);
  EXPECT_EQ(built.packet, expected.make());
  EXPECT_EQ(built.records, Records());
}

void expectFault(const Built& built, ErrorMsg fault, const std::vector<std::string>& texts = {}) {
  EXPECT_EQ(built.result, fault);
  EXPECT_EQ(built.packet, ByteVector());
  EXPECT_EQ(built.texts(), texts);
}

/// How long the values of attributes are that take up exactly `bytes` bytes together.
std::vector<std::size_t> valueSizesOf(std::size_t bytes) {
  std::vector<std::size_t> sizes;
  while (bytes > 0) {
    // What is left behind an attribute must be none, or enough for another.
    const std::size_t length = bytes == 256 ? 253 : std::min<std::size_t>(bytes, 255);
    sizes.push_back(length - 2);
    bytes -= length;
  }
  return sizes;
}

/// Octets that fill a packet, which has no other attributes, up to `length` bytes.
RequestMaker& fillTo(std::size_t length, RequestMaker& request) {
  for (const std::size_t size : valueSizesOf(length - 20)) {
    request.add(classOctets, {octets(ByteVector(size, 0x55))});
  }
  return request;
}

/// Octets that make `packet`, which has `start` bytes, one of `length` bytes.
PacketMaker& fillTo(std::size_t length, PacketMaker& packet, std::size_t start = 20) {
  for (const std::size_t size : valueSizesOf(length - start)) {
    packet.add(25, ByteVector(size, 0x55));
  }
  return packet;
}

// ---- Attributes to add ----

TEST(AssemblyAdd, BuildsAHeaderOfNothing) {
  for (const U8 code : ByteVector{1, 2, 4, 5, 12, 40, 43, 44, 99}) {
    SCOPED_TRACE(int{code});
    const Built built = build(code, {});
    expectPacket(built, PacketMaker(code));
    EXPECT_EQ(built.packet.size(), 20U);
  }
}

TEST(AssemblyAdd, WritesInTheOrderOfTheKeys) {
  expectPacket(build(accessRequest, RequestMaker()
                                        .addAt(10, userName, {text("ten")})
                                        .addAt(1, userName, {text("one")})
                                        .addAt(65535, userName, {text("last")})
                                        .addAt(5, vendorText, {text("five")})
                                        .addAt(0, userName, {text("none")})),
               PacketMaker(accessRequest)
                   .add(1, textBytes("none"))
                   .add(1, textBytes("one"))
                   .addVendor(9, 1, textBytes("five"))
                   .add(1, textBytes("ten"))
                   .add(1, textBytes("last")));
}

TEST(AssemblyAdd, WritesOneAttributeForEachValueInTheirOrder) {
  expectPacket(build(accessAccept, RequestMaker()
                                       .add(sessionTimeout, {7U, 5U, 6U})
                                       .add(vendorNumber, {2U, 1U})
                                       .add(userName, {text("nemo")})),
               PacketMaker(accessAccept)
                   .add(27, {0, 0, 0, 7})
                   .add(27, {0, 0, 0, 5})
                   .add(27, {0, 0, 0, 6})
                   .addVendor(9, 2, {0, 0, 0, 2})
                   .addVendor(9, 2, {0, 0, 0, 1})
                   .add(1, textBytes("nemo")));
}

TEST(AssemblyAdd, WritesNothingForAnEntryWithoutValues) {
  expectPacket(build(accessAccept,
                     RequestMaker().add(userName, {}).add(absent, {}).add(sessionTimeout, {1U})),
               PacketMaker(accessAccept).add(27, {0, 0, 0, 1}));
}

TEST(AssemblyAdd, RefusesAnEntryWithoutAnAttribute) {
  RequestMaker request;
  request.add(userName, {text("nemo")});
  request.make()->attributesToAddIs(9);
  expectFault(build(accessRequest, request), ErrorMsg::invalidAttrDataType);
}

TEST(AssemblyAdd, EndsAtTheFirstFault) {
  expectFault(
      build(accessRequest,
            RequestMaker().add(userName, {text("nemo"), 1U, text("never seen")}).add(absent, {1U})),
      ErrorMsg::invalidAttrDataType, {"AttrId: 1 Expected string type, invalid data type passed"});
}

TEST(AssemblyAdd, RefusesWhatTheDictionaryLacks) {
  expectFault(build(accessRequest, RequestMaker().add(absent, {1U})), ErrorMsg::invalidAttrId,
              {"Missing attribute: 200 from radius dictionary", "Unsupported attribute: 200"});
  expectFault(build(accessRequest, RequestMaker().add(vendorAttribute(10, 1), {1U})),
              ErrorMsg::invalidVendorId,
              {"Unsupported vendorId: 10", "Unsupported VSA: 26, vendor Id: 10, vendorAttrId: 1"});
  expectFault(build(accessRequest, RequestMaker().add(vendorAttribute(9, 99), {1U})),
              ErrorMsg::invalidVendorAttrId,
              {"Unsupported vendorAttrId: 99 for vendorId: 9",
               "Unsupported VSA: 26, vendor Id: 9, vendorAttrId: 99"});
}

TEST(AssemblyAdd, PassesOnWhatTheEncodersRefuse) {
  expectFault(build(accessRequest, RequestMaker().add(classOctets, {octets(ByteVector(254))})),
              ErrorMsg::invalidAttrLength, {"Attribute: 25 with invalid length 256"});
  expectFault(build(accessRequest, RequestMaker().add(vendorNumber, {text("1")})),
              ErrorMsg::invalidVendorAttrDataType,
              {"VendorId: 9 vendorAttrId: 2 Expected int type, invalid data type passed"});
}

TEST(AssemblyAdd, StartsAtTheLengthThatItIsGiven) {
  const CapturingSink trace;
  const auto request = RequestMaker().add(userName, {text("nemo")}).addMessageAuthenticator();
  ByteVector buffer(4096, 0xee);
  U16 length = 100;
  U8* msgAuthPos = nullptr;
  EXPECT_EQ(addAttributesToPkt(testSecret, {}, headerOf(accessRequest), request.make(),
                               buffer.data(), length, msgAuthPos, dictionary()),
            ErrorMsg::success);
  ByteVector expected(4096, 0xee);
  std::ranges::copy(attributeBytes(1, textBytes("nemo")), expected.begin() + 100);
  // The value is left for the one who signs.
  expected[106] = 80;
  expected[107] = 18;
  EXPECT_EQ(buffer, expected);
  EXPECT_EQ(length, 124);
  EXPECT_EQ(msgAuthPos - buffer.data(), 106);
}

// ---- Message-Authenticator ----

TEST(AssemblyMessageAuthenticator, StandsInItsTurnAndIsComputed) {
  for (const U8 code : ByteVector{1, 2, 3, 4, 5, 11, 12, 40, 41, 42, 43, 44, 45, 99}) {
    SCOPED_TRACE(int{code});
    expectPacket(build(code, RequestMaker()
                                 .add(userName, {text("nemo")})
                                 .addMessageAuthenticator()
                                 .add(sessionTimeout, {1U})),
                 PacketMaker(code)
                     .add(1, textBytes("nemo"))
                     .addMessageAuthenticator()
                     .add(27, {0, 0, 0, 1}));
  }
}

TEST(AssemblyMessageAuthenticator, IgnoresTheValuesOfItsEntry) {
  expectPacket(build(accessAccept, RequestMaker().add(messageAuthenticator,
                                                      {octets(ByteVector(16, 1)), 1U, noOctets})),
               PacketMaker(accessAccept).addMessageAuthenticator());
}

TEST(AssemblyMessageAuthenticator, NeedsNoDictionary) {
  const CapturingSink trace;
  const Ptr<PktReturn> built =
      buildPkt(nullptr, testSecret, {}, headerOf(accessRequest),
               RequestMaker().addMessageAuthenticator().make(), DictionaryMaker().make());
  ASSERT_EQ(built->errorMsg(), ErrorMsg::success);
  EXPECT_EQ(TestSupport::bytesOf(built->pkt()),
            PacketMaker(accessRequest).addMessageAuthenticator().make());
  EXPECT_EQ(trace.records(), Records());
}

TEST(AssemblyMessageAuthenticator, IsAnOrdinaryAttributeTheSecondTime) {
  expectPacket(
      build(accessRequest, RequestMaker()
                               .addMessageAuthenticator()
                               .add(messageAuthenticator, {octets({1, 2, 3}), octets({4})})
                               .add(messageAuthenticator, {})),
      PacketMaker(accessRequest).addMessageAuthenticator().add(80, {1, 2, 3}).add(80, {4}));
  expectFault(build(accessRequest, RequestMaker().addMessageAuthenticator().add(
                                       messageAuthenticator, {text("sixteen bytes...")})),
              ErrorMsg::invalidAttrDataType,
              {"AttrId: 80 Expected bytes type, invalid data type passed"});
}

TEST(AssemblyMessageAuthenticator, FitsExactlyOrNotAtAll) {
  RequestMaker fits;
  PacketMaker expected(accessAccept);
  fillTo(4096 - 18, fits).addMessageAuthenticator();
  fillTo(4096 - 18, expected).addMessageAuthenticator();
  const Built built = build(accessAccept, fits);
  expectPacket(built, expected);
  EXPECT_EQ(built.packet.size(), 4096U);
  RequestMaker oneMore;
  fillTo(4096 - 17, oneMore).addMessageAuthenticator();
  expectFault(build(accessAccept, oneMore), ErrorMsg::maxPktLengthExceeded);
}

TEST(AssemblyMessageAuthenticator, KeepsItsPlaceWhenAPacketIsModified) {
  const ByteVector old = PacketMaker(accessAccept)
                             .add(1, textBytes("nemo"))
                             .addMessageAuthenticator(true)
                             .add(27, {0, 0, 0, 1})
                             .make();
  expectPacket(modify(old, RequestMaker().add(userName, {text("new")})),
               PacketMaker(accessAccept)
                   .add(1, textBytes("nemo"))
                   .addMessageAuthenticator()
                   .add(27, {0, 0, 0, 1})
                   .add(1, textBytes("new")));
}

TEST(AssemblyMessageAuthenticator, IsKeptWhateverIsAskedForIt) {
  const ByteVector old =
      PacketMaker(accessRequest).addMessageAuthenticator().add(27, {0, 0, 0, 1}).make();
  const auto expected = PacketMaker(accessRequest).addMessageAuthenticator().add(27, {0, 0, 0, 1});
  expectPacket(modify(old, RequestMaker().remove(messageAuthenticator)), expected);
  expectPacket(
      modify(old, RequestMaker().replace(messageAuthenticator, {octets(ByteVector(16, 1))})),
      expected);
  expectPacket(modify(old, RequestMaker().replace(messageAuthenticator, {})), expected);
}

TEST(AssemblyMessageAuthenticator, HasARightLengthWhateverLengthTheOldOneHad) {
  for (const std::size_t size : Sizes{0, 15, 16, 17, 253}) {
    expectPacket(modify(PacketMaker(accessRequest).add(80, ByteVector(size, 7)).make(), {}),
                 PacketMaker(accessRequest).addMessageAuthenticator());
  }
}

TEST(AssemblyMessageAuthenticator, IsOrdinaryWhenThePacketToModifyHasOne) {
  const ByteVector old = PacketMaker(accessRequest).addMessageAuthenticator().make();
  expectPacket(modify(old, RequestMaker().add(messageAuthenticator, {octets({1, 2})})),
               PacketMaker(accessRequest).addMessageAuthenticator().add(80, {1, 2}));
  expectPacket(modify(old, RequestMaker().addMessageAuthenticator()),
               PacketMaker(accessRequest).addMessageAuthenticator());
}

TEST(AssemblyMessageAuthenticator, OfSeveralEachIsReservedAndTheLastIsFilled) {
  const ByteVector old = PacketMaker(accessRequest)
                             .add(80, ByteVector(16, 1))
                             .add(1, textBytes("nemo"))
                             .add(80, ByteVector(16, 2))
                             .add(80, ByteVector(16, 3))
                             .make();
  expectPacket(modify(old, {}), PacketMaker(accessRequest)
                                    .add(80, ByteVector(16))
                                    .add(1, textBytes("nemo"))
                                    .add(80, ByteVector(16))
                                    .addMessageAuthenticator());
}

TEST(AssemblyMessageAuthenticator, OfAPacketToModifyMustFit) {
  // Message-Authenticators of two bytes, which grow.
  const auto packetOf = [](int count) {
    PacketMaker old(accessRequest);
    for (; count > 0; --count) {
      old.add(80, {});
    }
    return old.make();
  };
  EXPECT_EQ(modify(packetOf(226), {}).packet.size(), 20U + 226 * 18);
  expectFault(modify(packetOf(227), {}), ErrorMsg::maxPktLengthExceeded);
}

TEST(AssemblyMessageAuthenticator, IsComputedBeforeTheResponseAuthenticator) {
  const Built built = build(accessAccept, RequestMaker().addMessageAuthenticator());
  const ByteVector secret = textBytes(testSecret);
  ByteVector packet = built.packet;
  std::ranges::copy(TestSupport::testReqAuth, packet.begin() + 4);
  EXPECT_EQ(ByteVector(built.packet.begin() + 4, built.packet.begin() + 20),
            TestSupport::md5(joined({packet, secret})));
  std::fill(packet.begin() + 22, packet.end(), U8{0});
  EXPECT_EQ(ByteVector(built.packet.begin() + 22, built.packet.end()),
            TestSupport::hmacMd5(secret, packet));
}

// ---- Copying, replacing and removing ----

PacketMaker usualPacket(U8 code) {
  return PacketMaker(code)
      .add(1, textBytes("nemo"))
      .addVendor(9, 1, textBytes("first"))
      .addVendor(9, 2, {0, 0, 0, 1})
      .addVendor(10, 1, textBytes("not in the dictionary"))
      .add(27, {0, 0, 0, 60})
      .addVendor(9, 1, textBytes("second"));
}

TEST(AssemblyReplace, CopiesEveryAttributeAsItIs) {
  for (const U8 code : ByteVector{1, 2, 4, 43}) {
    expectPacket(modify(usualPacket(code).make(), {}), usualPacket(code));
  }
}

TEST(AssemblyReplace, CopiesWhatTheDictionaryLacksAndSaysSo) {
  const ByteVector old = PacketMaker(accessAccept).add(200, {1}).addVendor(10, 1, {2}).make();
  const Built built = modify(old, {});
  EXPECT_EQ(built.packet, old);
  // Only a standard attribute is looked up before it is known to be replaced.
  EXPECT_EQ(
      built.records,
      (Records{errorRecord("", "getAttrInfo", "Missing attribute: 200 from radius dictionary")}));
}

TEST(AssemblyReplace, LeavesHiddenValuesThatItCopiesAsTheyAre) {
  const ByteVector cipher = countingBytes(16, 0x90);
  const auto packet = PacketMaker(accessRequest).add(2, cipher).add(69, countingBytes(19, 1));
  expectPacket(modify(packet.make(), {}), packet);
}

TEST(AssemblyReplace, PutsAReplacementInThePlaceOfTheOldAttribute) {
  expectPacket(modify(usualPacket(accessAccept).make(),
                      RequestMaker().replace(userName, {text("somebody else")})),
               PacketMaker(accessAccept)
                   .add(1, textBytes("somebody else"))
                   .addVendor(9, 1, textBytes("first"))
                   .addVendor(9, 2, {0, 0, 0, 1})
                   .addVendor(10, 1, textBytes("not in the dictionary"))
                   .add(27, {0, 0, 0, 60})
                   .addVendor(9, 1, textBytes("second")));
}

TEST(AssemblyReplace, ReplacesOnlyTheVendorAttributeOfThatVendorAndType) {
  expectPacket(modify(usualPacket(accessAccept).make(),
                      RequestMaker()
                          .replace(vendorNumber, {7U})
                          .replace(vendorAttribute(9, 27), {text("not there")})),
               PacketMaker(accessAccept)
                   .add(1, textBytes("nemo"))
                   .addVendor(9, 1, textBytes("first"))
                   .addVendor(9, 2, {0, 0, 0, 7})
                   .addVendor(10, 1, textBytes("not in the dictionary"))
                   .add(27, {0, 0, 0, 60})
                   .addVendor(9, 1, textBytes("second")));
}

TEST(AssemblyReplace, ReplacesEachAttributeOfTheKey) {
  expectPacket(modify(usualPacket(accessAccept).make(),
                      RequestMaker().replace(vendorText, {text("each"), text("never")})),
               PacketMaker(accessAccept)
                   .add(1, textBytes("nemo"))
                   .addVendor(9, 1, textBytes("each"))
                   .addVendor(9, 2, {0, 0, 0, 1})
                   .addVendor(10, 1, textBytes("not in the dictionary"))
                   .add(27, {0, 0, 0, 60})
                   .addVendor(9, 1, textBytes("each")));
}

TEST(AssemblyReplace, RemovesEachAttributeOfTheKey) {
  expectPacket(modify(usualPacket(accessAccept).make(),
                      RequestMaker().remove(vendorText).remove(sessionTimeout)),
               PacketMaker(accessAccept)
                   .add(1, textBytes("nemo"))
                   .addVendor(9, 2, {0, 0, 0, 1})
                   .addVendor(10, 1, textBytes("not in the dictionary")));
}

TEST(AssemblyReplace, RemovesWhatTheDictionaryLacks) {
  const ByteVector old = PacketMaker(accessAccept).add(200, {1}).addVendor(10, 1, {2}).make();
  const Built built = modify(old, RequestMaker().remove(absent).remove(vendorAttribute(10, 1)));
  EXPECT_EQ(built.packet, PacketMaker(accessAccept).make());
}

TEST(AssemblyReplace, RemovesNothingThatIsNotThere) {
  expectPacket(modify(usualPacket(accessAccept).make(),
                      RequestMaker().remove(classOctets).remove(vendorAttribute(10, 2))),
               usualPacket(accessAccept));
}

TEST(AssemblyReplace, ReplacesWhatIsBothReplacedAndRemoved) {
  expectPacket(
      modify(
          PacketMaker(accessAccept).add(1, textBytes("nemo")).addVendor(9, 2, {0, 0, 0, 1}).make(),
          RequestMaker()
              .replace(userName, {text("new")})
              .remove(userName)
              .replace(vendorNumber, {2U})
              .remove(vendorNumber)),
      PacketMaker(accessAccept).add(1, textBytes("new")).addVendor(9, 2, {0, 0, 0, 2}));
}

TEST(AssemblyReplace, AddsBehindAllThatIsCopied) {
  expectPacket(
      modify(PacketMaker(accessAccept).add(1, textBytes("nemo")).add(27, {0, 0, 0, 60}).make(),
             RequestMaker()
                 .remove(userName)
                 .add(userName, {text("new")})
                 .addMessageAuthenticator()
                 .add(vendorNumber, {1U})),
      PacketMaker(accessAccept)
          .add(27, {0, 0, 0, 60})
          .add(1, textBytes("new"))
          .addMessageAuthenticator()
          .addVendor(9, 2, {0, 0, 0, 1}));
}

TEST(AssemblyReplace, AddsNothingInPlaceOfAnAttributeThatIsNotThere) {
  expectPacket(modify(PacketMaker(accessAccept).add(27, {0, 0, 0, 60}).make(),
                      RequestMaker().replace(userName, {text("nobody")})),
               PacketMaker(accessAccept).add(27, {0, 0, 0, 60}));
}

TEST(AssemblyReplace, RefusesAReplacementWithoutAValue) {
  const ByteVector old = usualPacket(accessAccept).make();
  expectFault(modify(old, RequestMaker().replace(userName, {})), ErrorMsg::invalidAttrDataType);
  expectFault(modify(old, RequestMaker().replace(vendorText, {})), ErrorMsg::invalidAttrDataType);
  EXPECT_EQ(modify(old, RequestMaker().replace(classOctets, {})).result, ErrorMsg::success);
}

TEST(AssemblyReplace, RefusesAReplacementThatTheDictionaryLacks) {
  const ByteVector old = PacketMaker(accessAccept).add(200, {1}).addVendor(10, 1, {2}).make();
  // The one lookup of a standard attribute serves the encoder too.
  expectFault(modify(old, RequestMaker().replace(absent, {1U})), ErrorMsg::invalidAttrId,
              {"Missing attribute: 200 from radius dictionary", "Unsupported attribute: 200"});
  expectFault(modify(old, RequestMaker().replace(vendorAttribute(10, 1), {1U})),
              ErrorMsg::invalidVendorId,
              {"Missing attribute: 200 from radius dictionary", "Unsupported vendorId: 10",
               "Unsupported VSA: 26, vendor Id: 10, vendorAttrId: 1"});
}

TEST(AssemblyReplace, PassesOnWhatTheEncodersRefuse) {
  expectFault(
      modify(usualPacket(accessAccept).make(), RequestMaker().replace(sessionTimeout, {text("1")})),
      ErrorMsg::invalidAttrDataType, {"AttrId: 27 Expected int type, invalid data type passed"});
}

TEST(AssemblyReplace, TakesAVendorOfNumberZeroForAVendor) {
  const ByteVector old = PacketMaker(accessAccept).addVendor(0, 0, {1}).make();
  const Built built = modify(old, RequestMaker().remove(standardAttribute(26)));
  EXPECT_EQ(built.packet, PacketMaker(accessAccept).make());
}

TEST(AssemblyReplace, ReadsTheVendorsNumberInNetworkOrder) {
  const ByteVector old =
      PacketMaker(accessAccept).addVendor(0xfedcba98, 1, {1}).addVendor(0x98badcfe, 1, {2}).make();
  EXPECT_EQ(modify(old, RequestMaker().remove(vendorAttribute(0xfedcba98, 1))).packet,
            PacketMaker(accessAccept).addVendor(0x98badcfe, 1, {2}).make());
}

TEST(AssemblyReplace, TakesAVendorAttributeByItsFirstSubAttribute) {
  const ByteVector two = joined({ByteVector{26, 14, 0, 0, 0, 9}, attributeBytes(1, {'a', 'b'}),
                                 attributeBytes(2, {'c', 'd'})});
  expectPacket(modify(PacketMaker(accessAccept).addRaw(two).make(),
                      RequestMaker().replace(vendorText, {text("one")})),
               PacketMaker(accessAccept).addVendor(9, 1, textBytes("one")));
  expectPacket(modify(PacketMaker(accessAccept).addRaw(two).make(),
                      RequestMaker().replace(vendorNumber, {1U}).remove(vendorNumber)),
               PacketMaker(accessAccept).addRaw(two));
}

TEST(AssemblyReplace, DoesNotAskWhatTheSubAttributesLengthSays) {
  const ByteVector odd{26, 9, 0, 0, 0, 9, 2, 200, 1};
  expectPacket(modify(PacketMaker(accessAccept).addRaw(odd).make(), {}),
               PacketMaker(accessAccept).addRaw(odd));
  expectPacket(modify(PacketMaker(accessAccept).addRaw(odd).make(),
                      RequestMaker().replace(vendorNumber, {1U})),
               PacketMaker(accessAccept).addVendor(9, 2, {0, 0, 0, 1}));
}

TEST(AssemblyReplace, DropsWhatStandsBehindThePacketsLength) {
  const ByteVector old = usualPacket(accessAccept).make();
  const Built built = modify(joined({old, ByteVector(100, 1)}), {});
  EXPECT_EQ(built.packet, old);
}

TEST(AssemblyReplace, SetsLengthAndPlaceOfWhatItWrote) {
  const CapturingSink trace;
  const ByteVector old =
      PacketMaker(accessAccept).add(1, textBytes("nemo")).addMessageAuthenticator().make();
  ByteVector buffer(4096, 0xee);
  U16 length = 999;
  U8* msgAuthPos = nullptr;
  EXPECT_EQ(replaceAttributesInPkt(old.data(), buffer.data(), testSecret,
                                   verdaBytes(TestSupport::testReqAuth), headerOf(accessAccept),
                                   RequestMaker().make(), length, msgAuthPos, dictionary()),
            ErrorMsg::success);
  EXPECT_EQ(length, 44);
  EXPECT_EQ(msgAuthPos - buffer.data(), 26);
  // Neither the header in front nor the value of the Message-Authenticator is touched.
  EXPECT_EQ(ByteVector(buffer.begin(), buffer.begin() + 20), ByteVector(20, 0xee));
  EXPECT_EQ(ByteVector(buffer.begin() + 20, buffer.begin() + 28),
            joined({attributeBytes(1, textBytes("nemo")), ByteVector{80, 18}}));
  EXPECT_EQ(ByteVector(buffer.begin() + 28, buffer.end()), ByteVector(4096 - 28, 0xee));
}

TEST(AssemblyReplace, RefusesALengthThatLeavesNoRoomForTheHeader) {
  for (const U8 oldLength : ByteVector{0, 1, 19}) {
    ByteVector old(20);
    old[3] = oldLength;
    ByteVector buffer(4096, 0xee);
    U16 length = 999;
    U8* msgAuthPos = nullptr;
    EXPECT_EQ(
        replaceAttributesInPkt(old.data(), buffer.data(), testSecret, {}, headerOf(accessRequest),
                               RequestMaker().make(), length, msgAuthPos, dictionary()),
        ErrorMsg::invalidPktLength);
    EXPECT_EQ(buffer, ByteVector(4096, 0xee));
  }
}

// ---- Runs of fragments ----

/// Where a run of fragments stands among other attributes, and what becomes of it.
struct FragmentRun {
  const char* name;
  PacketMaker old;
  PacketMaker replaced;
  PacketMaker removed;
};

std::vector<FragmentRun> runs() {
  const ByteVector piece(253, 1);
  const ByteVector fresh{9, 9};
  const auto packet = [] { return PacketMaker(accessAccept); };
  const auto name = textBytes("nemo");
  return {
      {"alone", packet().add(89, piece), packet().add(89, fresh), packet()},
      {"the whole packet", packet().add(89, piece).add(89, piece).add(89, {2}),
       packet().add(89, fresh), packet()},
      {"at the start", packet().add(89, piece).add(89, {2}).add(1, name),
       packet().add(89, fresh).add(1, name), packet().add(1, name)},
      {"in the middle", packet().add(1, name).add(89, piece).add(89, {2}).add(1, name),
       packet().add(1, name).add(89, fresh).add(1, name), packet().add(1, name).add(1, name)},
      {"at the end", packet().add(1, name).add(89, piece).add(89, {2}),
       packet().add(1, name).add(89, fresh), packet().add(1, name)},
      {"two runs", packet().add(89, piece).add(89, {2}).add(1, name).add(89, {3}).add(89, {4}),
       packet().add(89, fresh).add(1, name).add(89, fresh), packet().add(1, name)},
      {"runs with a vendor's attribute between",
       packet().add(89, {1}).addVendor(9, 2, {0, 0, 0, 1}).add(89, {2}),
       packet().add(89, fresh).addVendor(9, 2, {0, 0, 0, 1}).add(89, fresh),
       packet().addVendor(9, 2, {0, 0, 0, 1})},
      {"runs with a Message-Authenticator between",
       packet().add(89, {1}).addMessageAuthenticator().add(89, {2}),
       packet().add(89, fresh).addMessageAuthenticator().add(89, fresh),
       packet().addMessageAuthenticator()},
      {"beside another concat attribute",
       packet().add(79, {1}).add(89, {2}).add(89, {3}).add(79, {4}),
       packet().add(79, {1}).add(89, fresh).add(79, {4}), packet().add(79, {1}).add(79, {4})},
      {"of empty fragments", packet().add(89, {}).add(89, {}), packet().add(89, fresh), packet()},
  };
}

TEST(AssemblyConcat, ReplacesARunAsOne) {
  for (const FragmentRun& run : runs()) {
    SCOPED_TRACE(run.name);
    expectPacket(modify(run.old.make(), RequestMaker().replace(otherConcat, {octets({9, 9})})),
                 run.replaced);
  }
}

TEST(AssemblyConcat, RemovesARunAsOne) {
  for (const FragmentRun& run : runs()) {
    SCOPED_TRACE(run.name);
    expectPacket(modify(run.old.make(), RequestMaker().remove(otherConcat)), run.removed);
  }
}

TEST(AssemblyConcat, CopiesARunFragmentByFragment) {
  for (const FragmentRun& run : runs()) {
    SCOPED_TRACE(run.name);
    expectPacket(modify(run.old.make(), RequestMaker().remove(sessionTimeout)), run.old);
  }
}

TEST(AssemblyConcat, ReplacesTwoRunsThatStandSideBySide) {
  expectPacket(
      modify(PacketMaker(accessAccept).add(79, {1}).add(79, {2}).add(89, {3}).add(89, {4}).make(),
             RequestMaker().remove(eapMessage).replace(otherConcat, {octets({9})})),
      PacketMaker(accessAccept).add(89, {9}));
}

TEST(AssemblyConcat, ReplacesARunByALongerOne) {
  const ByteVector value = countingBytes(600);
  const auto part = [&](std::size_t begin, std::size_t end) {
    return ByteVector(value.begin() + static_cast<std::ptrdiff_t>(begin),
                      value.begin() + static_cast<std::ptrdiff_t>(end));
  };
  expectPacket(modify(PacketMaker(accessAccept).add(89, {1}).add(89, {2}).add(1, {'n'}).make(),
                      RequestMaker().replace(otherConcat, {octets(value)})),
               PacketMaker(accessAccept)
                   .add(89, part(0, 253))
                   .add(89, part(253, 506))
                   .add(89, part(506, 600))
                   .add(1, {'n'}));
}

TEST(AssemblyConcat, TreatsEveryFragmentOfAnOrdinaryAttributeByItself) {
  const auto old = PacketMaker(accessAccept).add(25, {1}).add(25, {2});
  expectPacket(modify(old.make(), RequestMaker().replace(classOctets, {octets({9})})),
               PacketMaker(accessAccept).add(25, {9}).add(25, {9}));
  expectPacket(modify(old.make(), RequestMaker().remove(classOctets)), PacketMaker(accessAccept));
}

TEST(AssemblyConcat, TreatsEveryFragmentOfAVendorByItself) {
  const auto old = PacketMaker(accessAccept).addVendor(9, 3, {1}).addVendor(9, 3, {2});
  expectPacket(modify(old.make(), RequestMaker().replace(vendorConcat, {octets({9})})),
               PacketMaker(accessAccept).addVendor(9, 3, {9}).addVendor(9, 3, {9}));
  expectPacket(modify(old.make(), RequestMaker().remove(vendorConcat)), PacketMaker(accessAccept));
}

TEST(AssemblyConcat, FindsAFaultAlsoInARunThatIsPassedOver) {
  expectFault(modify(PacketMaker(accessAccept).add(89, {1}).addRaw({89, 9, 1}).make(),
                     RequestMaker().remove(otherConcat)),
              ErrorMsg::invalidAttrLength);
}

TEST(AssemblyConcat, SplitsLongValuesBehindOtherAttributes) {
  for (const std::size_t size : Sizes{1, 253, 254, 506, 600}) {
    SCOPED_TRACE(size);
    PacketMaker expected(accessAccept);
    expected.add(1, textBytes("nemo"));
    for (std::size_t begin = 0; begin < size; begin += 253) {
      expected.add(79, ByteVector(std::min<std::size_t>(253, size - begin), 0x41));
    }
    expected.add(27, {0, 0, 0, 1});
    expectPacket(build(accessAccept, RequestMaker()
                                         .add(userName, {text("nemo")})
                                         .add(eapMessage, {octets(ByteVector(size, 0x41))})
                                         .add(sessionTimeout, {1U})),
                 expected);
  }
}

TEST(AssemblyConcat, FillsThePacketToItsLastByte) {
  const Built built =
      build(accessAccept, RequestMaker().add(eapMessage, {octets(ByteVector(4044, 0x41))}));
  EXPECT_EQ(built.result, ErrorMsg::success);
  EXPECT_EQ(built.packet.size(), 4096U);
  for (const std::size_t size : Sizes{4045, 4076, 4077, 65535}) {
    SCOPED_TRACE(size);
    EXPECT_EQ(
        build(accessAccept, RequestMaker().add(eapMessage, {octets(ByteVector(size))})).result,
        ErrorMsg::maxPktLengthExceeded);
  }
  EXPECT_EQ(build(accessAccept, RequestMaker()
                                    .add(userName, {text("")})
                                    .add(eapMessage, {octets(ByteVector(4042, 0x41))}))
                .packet.size(),
            4096U);
  EXPECT_EQ(build(accessAccept, RequestMaker()
                                    .add(userName, {text("")})
                                    .add(eapMessage, {octets(ByteVector(4043, 0x41))}))
                .result,
            ErrorMsg::maxPktLengthExceeded);
}

TEST(AssemblyConcat, HidesTheLastFragmentAlone) {
  const ByteVector value = countingBytes(300);
  const ByteVector first(value.begin(), value.begin() + 253);
  const ByteVector last(value.begin() + 253, value.end());
  expectPacket(build(accessAccept, RequestMaker().add(hiddenConcat, {octets(value)})),
               PacketMaker(accessAccept)
                   .add(90, first)
                   .add(90, hidden(last, textBytes(testSecret), TestSupport::testReqAuth)));
}

// ---- Where an encoder writes nothing ----

TEST(AssemblyNothing, WritesNothingOfAnEmptyConcatValue) {
  expectPacket(build(accessAccept, RequestMaker()
                                       .add(eapMessage, {noOctets})
                                       .add(userName, {text("nemo")})
                                       .add(hiddenConcat, {noOctets, noOctets})),
               PacketMaker(accessAccept).add(1, textBytes("nemo")));
}

TEST(AssemblyNothing, WritesNothingOfATaggedNumberForATaggedDate) {
  for (const Attribute& date : {taggedDate, hiddenTaggedDate}) {
    expectPacket(build(accessAccept, RequestMaker()
                                         .add(date, {taggedNumber})
                                         .add(userName, {text("nemo")})
                                         .add(date, {taggedNumber, taggedNumber})),
                 PacketMaker(accessAccept).add(1, textBytes("nemo")));
  }
}

TEST(AssemblyNothing, GrowsByNothingForATaggedNumberForAVendorsTaggedDate) {
  for (const Attribute& date : {vendorTaggedDate, vendorHiddenTaggedDate}) {
    // Type and Vendor-Id are overwritten by what comes next.
    expectPacket(build(accessAccept, RequestMaker()
                                         .add(date, {taggedNumber})
                                         .add(userName, {text("nemo")})
                                         .add(date, {taggedNumber, taggedNumber})),
                 PacketMaker(accessAccept).add(1, textBytes("nemo")));
  }
}

TEST(AssemblyNothing, GrowsByTheLengthByteThatStandsThere) {
  // The vendor's number, of which the encoder wrote nothing but that, stands behind an attribute of
  // two bytes: its second byte is taken for a Length.
  DictionaryMaker maker;
  maker.add(1, RadiusAttributeType::string).add(79, RadiusAttributeType::octets, {.concat = true});
  const DictPtr dict =
      maker.addVendor(0x00050607, 5, RadiusAttributeType::date, {.tag = true}).make();
  const auto request = RequestMaker()
                           .add(vendorAttribute(0x00050607, 5), {taggedNumber})
                           .add(userName, {text("")})
                           .add(eapMessage, {noOctets})
                           .make();
  const Ptr<PktReturn> built =
      buildPkt(nullptr, testSecret, {}, headerOf(accessRequest), request, dict);
  ASSERT_EQ(built->errorMsg(), ErrorMsg::success);
  EXPECT_EQ(TestSupport::bytesOf(built->pkt()),
            PacketMaker(accessRequest).add(1, {}).addRaw({0, 5, 6, 7, 0}).make());
}

TEST(AssemblyNothing, HidesNothingWhereNothingWasWritten) {
  const CapturingSink trace;
  ByteVector buffer(4096, 0);
  // The Length of an attribute that is not there.
  buffer[21] = 18;
  U16 length = 20;
  U8* msgAuthPos = nullptr;
  EXPECT_EQ(
      addAttributesToPkt(testSecret, verdaBytes(TestSupport::testReqAuth), headerOf(accessAccept),
                         RequestMaker().add(hiddenTaggedDate, {taggedNumber}).make(), buffer.data(),
                         length, msgAuthPos, dictionary()),
      ErrorMsg::success);
  EXPECT_EQ(length, 38);
  buffer[21] = 0;
  EXPECT_EQ(buffer, ByteVector(4096));
}

TEST(AssemblyNothing, GrowsNeverBeyondTheLongestPacket) {
  for (const Attribute& nothing : {eapMessage, taggedDate}) {
    const AttrValue value = nothing == eapMessage ? noOctets : taggedNumber;
    for (const U16 start : {U16{4094}, U16{4095}, U16{4096}}) {
      ByteVector buffer(4096, 3);
      U16 length = start;
      U8* msgAuthPos = nullptr;
      const ErrorMsg result = addAttributesToPkt(testSecret, {}, headerOf(accessRequest),
                                                 RequestMaker().add(nothing, {value}).make(),
                                                 buffer.data(), length, msgAuthPos, dictionary());
      // At 4094 there is a Length byte, and it says one byte too many.
      EXPECT_EQ(result, start == 4094 ? ErrorMsg::maxPktLengthExceeded : ErrorMsg::success);
      EXPECT_EQ(length, start);
      EXPECT_EQ(buffer, ByteVector(4096, 3));
    }
  }
}

TEST(AssemblyNothing, LeavesAFullPacketFull) {
  for (const Attribute& nothing : {eapMessage, taggedDate, hiddenTaggedDate}) {
    for (const std::size_t length : Sizes{4095, 4096}) {
      RequestMaker request;
      PacketMaker expected(accessAccept);
      fillTo(length, request).add(nothing, {nothing == eapMessage ? noOctets : taggedNumber});
      fillTo(length, expected);
      expectPacket(build(accessAccept, request), expected);
    }
  }
}

TEST(AssemblyNothing, NeedsRoomForAVendorsTaggedDate) {
  RequestMaker fits;
  PacketMaker expected(accessAccept);
  fillTo(4090, fits).add(vendorTaggedDate, {taggedNumber});
  fillTo(4090, expected);
  expectPacket(build(accessAccept, fits), expected);
  RequestMaker oneMore;
  fillTo(4091, oneMore).add(vendorTaggedDate, {taggedNumber});
  expectFault(build(accessAccept, oneMore), ErrorMsg::maxPktLengthExceeded);
}

TEST(AssemblyNothing, ReplacesAnAttributeByNothing) {
  expectPacket(modify(PacketMaker(accessAccept).add(89, {1}).add(1, {'n'}).make(),
                      RequestMaker().replace(otherConcat, {noOctets})),
               PacketMaker(accessAccept).add(1, {'n'}));
}

// ---- Vendor values whose outer Length counts modulo 256 ----

TEST(AssemblyVendor, GoesOnByTheOuterLengthThatIsWritten) {
  struct Case {
    std::size_t size;
    std::size_t step;
  };
  for (const Case& one : {Case{245, 253},
                          {246, 254},
                          {247, 255},
                          {248, 0},
                          {249, 1},
                          {250, 2},
                          {251, 3},
                          {252, 4},
                          {253, 5}}) {
    SCOPED_TRACE(one.size);
    // The attribute as it is written, then what follows written over it.
    ByteVector attributes = joined({ByteVector{26, static_cast<U8>(one.size + 8), 0, 0, 0, 9, 7,
                                               static_cast<U8>(one.size + 2)},
                                    countingBytes(one.size)});
    attributes.resize(one.step);
    attributes = joined({attributes, attributeBytes(27, {0, 0, 0, 1})});
    expectPacket(build(accessAccept, RequestMaker()
                                         .add(vendorOctets, {octets(countingBytes(one.size))})
                                         .add(sessionTimeout, {1U})),
                 PacketMaker(accessAccept).addRaw(attributes));
  }
  expectFault(build(accessAccept, RequestMaker().add(vendorOctets, {octets(ByteVector(254))})),
              ErrorMsg::invalidAttrLength, {"Attribute: 7 with invalid length 256"});
}

TEST(AssemblyVendor, IsOverwrittenByAMessageAuthenticatorThatFollows) {
  const ByteVector value(250, 0xff);
  expectPacket(build(accessRequest,
                     RequestMaker().add(vendorOctets, {octets(value)}).addMessageAuthenticator()),
               PacketMaker(accessRequest).addRaw({26, 2}).addMessageAuthenticator());
}

TEST(AssemblyVendor, LeavesBytesBehindThatAreTakenForALengthWhereNothingIsWritten) {
  const ByteVector value(253, 0xff);
  const ByteVector front{26, 5, 0, 0, 0, 9, 7, 255, 0xff, 0xff, 0xff, 0xff};
  // Behind the five bytes that the outer Length says, the vendor type stands for a Length of seven.
  expectPacket(build(accessRequest,
                     RequestMaker().add(vendorOctets, {octets(value)}).add(eapMessage, {noOctets})),
               PacketMaker(accessRequest).addRaw(front));
  // The next is 255, which takes the packet to its longest and no further.
  for (const std::size_t start : Sizes{4096 - 267, 4096 - 266}) {
    RequestMaker request;
    fillTo(start, request).add(vendorOctets, {octets(value)}).add(eapMessage, {noOctets, noOctets});
    const Built built = build(accessRequest, request);
    EXPECT_EQ(built.result,
              start == 4096 - 267 ? ErrorMsg::success : ErrorMsg::maxPktLengthExceeded);
    EXPECT_EQ(built.packet.size(), start == 4096 - 267 ? 4096U : 0U);
  }
}

TEST(AssemblyVendor, CountsTheRoomOfTheWholeAttribute) {
  RequestMaker fits;
  fillTo(4096 - 261, fits).add(vendorOctets, {octets(ByteVector(253))});
  EXPECT_EQ(build(accessAccept, fits).packet.size(), 4096U - 261 + 5);
  RequestMaker oneMore;
  fillTo(4096 - 260, oneMore).add(vendorOctets, {octets(ByteVector(253))});
  expectFault(build(accessAccept, oneMore), ErrorMsg::maxPktLengthExceeded,
              {"Attribute: 7 Length: 261 addition exceeds max packet length 3836"});
}

TEST(AssemblyVendor, HidesTheWholeSubAttributeWhateverTheOuterLengthSays) {
  const CapturingSink trace;
  const ByteVector plain = countingBytes(253, 1);
  ByteVector buffer(4096, 0);
  U16 length = 20;
  U8* msgAuthPos = nullptr;
  EXPECT_EQ(
      addAttributesToPkt(testSecret, verdaBytes(TestSupport::testReqAuth), headerOf(accessAccept),
                         RequestMaker().add(vendorSalted, {octets(plain)}).make(), buffer.data(),
                         length, msgAuthPos, dictionary()),
      ErrorMsg::success);
  const ByteVector cipher = hidden(std::span(plain).subspan(2), textBytes(testSecret),
                                   TestSupport::testReqAuth, std::span(plain).first(2));
  EXPECT_EQ(ByteVector(buffer.begin() + 20, buffer.begin() + 281),
            joined({ByteVector{26, 5, 0, 0, 0, 9, 4, 255, 1, 2}, cipher}));
  EXPECT_EQ(length, 25);
}

TEST(AssemblyVendor, WritesItsAttributeWithoutTouchingWhatStandsBehind) {
  expectPacket(build(accessAccept, RequestMaker()
                                       .add(vendorConcat, {octets(countingBytes(247))})
                                       .add(vendorConcat, {noOctets})),
               PacketMaker(accessAccept).addVendor(9, 3, countingBytes(247)).addVendor(9, 3, {}));
}

// ---- Hiding ----

ByteVector hiddenUnder(const ByteVector& authenticator, const ByteVector& plain,
                       const ByteVector& salt = {}) {
  return hidden(plain, textBytes(testSecret), authenticator, salt);
}

TEST(AssemblyHiding, HidesAUserPasswordUnderTheRequestsAuthenticator) {
  ByteVector padded = textBytes("a password of twenty");
  padded.resize(32);
  expectPacket(
      build(accessRequest, RequestMaker().add(userPassword, {text("a password of twenty")})),
      PacketMaker(accessRequest).add(2, hiddenUnder(countingBytes(16, 0x30), padded)));
}

TEST(AssemblyHiding, HidesAResponsesValueUnderTheRequestAuthenticator) {
  const ByteVector salt{0x80, 0x01};
  ByteVector plain = textBytes("\x06secret");
  plain.resize(16);
  const ByteVector value = joined({salt, plain});
  const ByteVector cipher = hiddenUnder(TestSupport::testReqAuth, plain, salt);
  expectPacket(
      build(accessAccept,
            RequestMaker()
                .add(tunnelPassword,
                     {TaggedStr{.str = Verda::String(std::span<const U8>(value)), .tag = 3}})
                .add(vendorSalted, {octets(value)})),
      PacketMaker(accessAccept)
          .add(69, joined({ByteVector{3}, salt, cipher}))
          .addVendor(9, 4, joined({salt, cipher})));
}

TEST(AssemblyHiding, HidesSaltedValuesOfEveryShortLength) {
  for (std::size_t size = 0; size <= 4; ++size) {
    SCOPED_TRACE(size);
    const ByteVector value = countingBytes(size, 0x81);
    ByteVector expected = value;
    if (size > 2) {
      const ByteVector salt(value.begin(), value.begin() + 2);
      const ByteVector plain(value.begin() + 2, value.end());
      expected = joined({salt, hiddenUnder(TestSupport::testReqAuth, plain, salt)});
    }
    expectPacket(build(accessAccept, RequestMaker()
                                         .add(salted, {octets(value)})
                                         .add(vendorSalted, {octets(value)})
                                         .add(sessionTimeout, {1U})),
                 PacketMaker(accessAccept)
                     .add(91, expected)
                     .addVendor(9, 4, expected)
                     .add(27, {0, 0, 0, 1}));
    expectPacket(
        build(accessAccept,
              RequestMaker().add(
                  tunnelPassword,
                  {TaggedStr{.str = Verda::String(std::span<const U8>(value)), .tag = 1}})),
        PacketMaker(accessAccept).add(69, joined({ByteVector{1}, expected})));
  }
}

TEST(AssemblyHiding, HidesAReplacementUnderTheAuthenticatorOfThePacket) {
  ByteVector padded = textBytes("new");
  padded.resize(16);
  expectPacket(
      modify(PacketMaker(accessRequest).add(2, ByteVector(32, 1)).make(),
             RequestMaker().replace(userPassword, {text("new")}).add(userPassword, {text("new")})),
      PacketMaker(accessRequest)
          .add(2, hiddenUnder(countingBytes(16, 0x30), padded))
          .add(2, hiddenUnder(countingBytes(16, 0x30), padded)));
}

TEST(AssemblyHiding, HidesUnderZerosWhereTheAuthenticatorIsADigest) {
  const ByteVector value = countingBytes(18, 0x81);
  const ByteVector salt{0x81, 0x82};
  const ByteVector plain(value.begin() + 2, value.end());
  for (const U8 code : ByteVector{4, 40, 43}) {
    expectPacket(
        build(code, RequestMaker().add(salted, {octets(value)})),
        PacketMaker(code).add(91, joined({salt, hiddenUnder(ByteVector(16), plain, salt)})));
  }
}

TEST(AssemblyHiding, HidesUnderTheOldAuthenticatorWhenADigestIsModified) {
  const ByteVector value = countingBytes(18, 0x81);
  const ByteVector salt{0x81, 0x82};
  const ByteVector plain(value.begin() + 2, value.end());
  const ByteVector old = PacketMaker(coaRequest).add(1, {'n'}).make();
  const ByteVector oldAuthenticator(old.begin() + 4, old.begin() + 20);
  expectPacket(modify(old, RequestMaker().add(salted, {octets(value)})),
               PacketMaker(coaRequest)
                   .add(1, {'n'})
                   .add(91, joined({salt, hiddenUnder(oldAuthenticator, plain, salt)})));
}

TEST(AssemblyHiding, NeedsAWholeAuthenticator) {
  const CapturingSink trace;
  const auto hdr = headerOf(accessRequest);
  hdr->authenticatorIs(Verda::String("fifteen bytes.."));
  const auto request = RequestMaker().add(userPassword, {text("p")}).make();
  const Ptr<PktReturn> built = buildPkt(nullptr, testSecret, {}, hdr, request, dictionary());
  EXPECT_EQ(built->errorMsg(), ErrorMsg::invalidBytesCopied);
  EXPECT_EQ(built->pkt(), nullptr);
  EXPECT_EQ(trace.texts(),
            (std::vector<std::string>{"Mismatch in bytes copied: 15, expected: 16"}));
}

TEST(AssemblyHiding, ReportsAFailedMd5) {
  FaultSeam::failIs(Primitive::md5);
  const Built built = build(accessRequest, RequestMaker().add(userPassword, {text("p")}));
  FaultSeam::failDel();
  expectFault(built, ErrorMsg::md5GenerationFailed, {"MD5 digest of incorrect length: 0"});
}

// ---- A packet that is full ----

TEST(AssemblyFull, CopiesAFullPacket) {
  PacketMaker old(accessAccept);
  fillTo(4096, old);
  expectPacket(modify(old.make(), {}), old);
}

TEST(AssemblyFull, RefusesACopyThatNoLongerFits) {
  const auto fullBehind = [](const char* name) {
    PacketMaker packet(accessAccept);
    return fillTo(4096, packet.add(1, textBytes(name)), 23);
  };
  const ByteVector full = fullBehind("n").make();
  ASSERT_EQ(full.size(), 4096U);
  expectPacket(modify(full, RequestMaker().replace(userName, {text("m")})), fullBehind("m"));
  expectFault(modify(full, RequestMaker().replace(userName, {text("mm")})),
              ErrorMsg::maxPktLengthExceeded);
  EXPECT_EQ(modify(full, RequestMaker().remove(userName)).packet.size(), 4093U);
}

TEST(AssemblyFull, RefusesAnotherAttribute) {
  PacketMaker old(accessAccept);
  fillTo(4094, old);
  const Built fits = modify(old.make(), RequestMaker().add(userName, {text("")}));
  EXPECT_EQ(fits.packet.size(), 4096U);
  expectFault(modify(old.make(), RequestMaker().add(userName, {text("n")})),
              ErrorMsg::maxPktLengthExceeded,
              {"Attribute: 1 Length: 3 addition exceeds max packet length 4094"});
}

// ---- Packets to modify that are not well formed ----

/// A packet whose attributes are these bytes.
ByteVector packetOf(const ByteVector& attributes) {
  return PacketMaker(accessRequest).addRaw(attributes).make();
}

TEST(AssemblyHostile, RefusesABrokenFrame) {
  struct Case {
    const char* name;
    ByteVector attributes;
  };
  for (const Case& one : {
           Case{"a lone byte", {1}},
           {"a lone byte behind an attribute", {1, 3, 'n', 27}},
           {"length 0", {1, 0}},
           {"length 1", {1, 1}},
           {"length 0 behind an attribute", {1, 3, 'n', 27, 0, 0, 0}},
           {"one byte cut", {1, 3}},
           {"cut behind an attribute", {1, 3, 'n', 27, 6, 0, 0, 0}},
           {"length 255 of nothing", {1, 255}},
           {"a Message-Authenticator cut", {80, 18, 0}},
           {"a Message-Authenticator of length 1", {80, 1}},
       }) {
    SCOPED_TRACE(one.name);
    expectFault(modify(packetOf(one.attributes), {}), ErrorMsg::invalidAttrLength);
    expectFault(modify(packetOf(one.attributes), RequestMaker().remove(userName)),
                ErrorMsg::invalidAttrLength);
  }
}

TEST(AssemblyHostile, RefusesAVendorAttributeOfLessThanEightBytes) {
  for (std::size_t size = 0; size < 6; ++size) {
    SCOPED_TRACE(size);
    const ByteVector cut = attributeBytes(26, ByteVector(size));
    expectFault(modify(packetOf(cut), {}), ErrorMsg::invalidAttrLength);
    expectFault(modify(packetOf(joined({cut, attributeBytes(1, {'n'})})),
                       RequestMaker().remove(standardAttribute(26))),
                ErrorMsg::invalidAttrLength);
  }
  const ByteVector whole = attributeBytes(26, ByteVector(6));
  EXPECT_EQ(modify(packetOf(whole), {}).packet, packetOf(whole));
}

TEST(AssemblyHostile, MeetsFaultsInTheOrderOfThePacket) {
  // What comes before the fault is judged before it.
  expectFault(modify(packetOf({1, 3, 'n', 27, 0}), RequestMaker().replace(userName, {})),
              ErrorMsg::invalidAttrDataType);
  expectFault(modify(packetOf({27, 0, 1, 3, 'n'}), RequestMaker().replace(userName, {})),
              ErrorMsg::invalidAttrLength);
}

TEST(AssemblyHostile, RefusesABrokenHeader) {
  const ByteVector good = packetOf(attributeBytes(1, {'n'}));
  for (std::size_t size = 0; size < good.size(); ++size) {
    SCOPED_TRACE(size);
    expectFault(
        modify(ByteVector(good.begin(), good.begin() + static_cast<std::ptrdiff_t>(size)), {}),
        ErrorMsg::invalidPktLength);
  }
  for (const unsigned length : {0U, 1U, 19U, 24U, 4096U, 4097U, 65535U}) {
    SCOPED_TRACE(length);
    ByteVector lying = good;
    lying[2] = static_cast<U8>(length / 256);
    lying[3] = static_cast<U8>(length % 256);
    expectFault(modify(lying, {}), ErrorMsg::invalidPktLength);
  }
}

TEST(AssemblyHostile, RefusesALengthBeyondTheLongestPacketAlsoWhenTheBytesAreThere) {
  ByteVector old(5000);
  old[0] = accessRequest;
  old[2] = 4097 / 256;
  old[3] = 4097 % 256;
  expectFault(modify(old, {}), ErrorMsg::invalidPktLength);
}

TEST(AssemblyHostile, EndsForEveryPacketWithARewrittenByte) {
  const ByteVector good = PacketMaker(accessRequest)
                              .add(1, textBytes("nemo"))
                              .addVendor(9, 3, {1, 2})
                              .add(89, {1, 2})
                              .add(89, {3})
                              .addMessageAuthenticator()
                              .make();
  const RequestMaker request = RequestMaker()
                                   .replace(userName, {text("a longer name")})
                                   .remove(otherConcat)
                                   .replace(vendorConcat, {octets(ByteVector(253))})
                                   .add(eapMessage, {octets(ByteVector(300))});
  const CapturingSink silent(Verda::traceOff);
  for (std::size_t at = 20; at < good.size(); ++at) {
    for (int byte = 0; byte < 256; ++byte) {
      ByteVector odd = good;
      odd[at] = static_cast<U8>(byte);
      const auto built =
          buildPkt(pktOf(odd), testSecret, {}, nullptr, request.make(), dictionary());
      if (built->pkt()) {
        EXPECT_LE(built->pkt()->bytes(), 4096U);
      }
    }
  }
}

// ---- The driver ----

TEST(BuildPkt, NeedsAPacketOrAHeader) {
  const CapturingSink trace;
  const Ptr<PktReturn> built =
      buildPkt(nullptr, testSecret, {}, nullptr, RequestMaker().make(), dictionary());
  EXPECT_EQ(built->errorMsg(), ErrorMsg::invalidPktPtr);
  EXPECT_EQ(built->pkt(), nullptr);
}

TEST(BuildPkt, DoesNotUseAHeaderWhenThereIsAPacket) {
  const auto hdr = headerOf(accessAccept);
  hdr->idIs(99);
  const ByteVector old = PacketMaker(accountingRequest).add(1, {'n'}).make();
  const Ptr<PktReturn> built =
      buildPkt(pktOf(old), testSecret, {}, hdr, RequestMaker().make(), dictionary());
  ASSERT_EQ(built->errorMsg(), ErrorMsg::success);
  EXPECT_EQ(TestSupport::bytesOf(built->pkt()), old);
  EXPECT_EQ(hdr->code(), accessAccept);
  EXPECT_EQ(hdr->length(), 0);
  EXPECT_EQ(hdr->authenticator(), headerOf(accessAccept)->authenticator());
}

TEST(BuildPkt, WritesLengthAndAuthenticatorIntoTheHeader) {
  for (const U8 code : ByteVector{1, 2, 4, 12, 43}) {
    SCOPED_TRACE(int{code});
    const auto hdr = headerOf(code);
    const Ptr<PktReturn> built =
        buildPkt(nullptr, testSecret, verdaBytes(reqAuthFor(code)), hdr,
                 RequestMaker().add(userName, {text("nemo")}).make(), dictionary());
    const ByteVector packet = TestSupport::bytesOf(built->pkt());
    EXPECT_EQ(hdr->length(), 26);
    EXPECT_EQ(packet[2] * 256 + packet[3], 26);
    EXPECT_EQ(hdr->authenticator().bytes().size(), 16U);
    EXPECT_TRUE(std::ranges::equal(hdr->authenticator().bytes(), std::span(packet).subspan(4, 16)));
    EXPECT_EQ(hdr->code(), code);
    EXPECT_EQ(hdr->id(), 7);
  }
}

TEST(BuildPkt, LeavesTheHeaderAloneWhenAnAttributeIsRefused) {
  const CapturingSink trace;
  const auto hdr = headerOf(accessRequest);
  const auto request = RequestMaker().add(userName, {text("nemo"), 1U}).make();
  EXPECT_EQ(buildPkt(nullptr, testSecret, {}, hdr, request, dictionary())->errorMsg(),
            ErrorMsg::invalidAttrDataType);
  EXPECT_EQ(hdr->length(), 0);
  EXPECT_EQ(hdr->authenticator(), headerOf(accessRequest)->authenticator());
}

TEST(BuildPkt, LeavesZerosForAnEmptyAuthenticator) {
  const auto hdr = headerOf(accessRequest);
  hdr->authenticatorIs(Verda::String());
  const Ptr<PktReturn> built = buildPkt(
      nullptr, testSecret, {}, hdr, RequestMaker().addMessageAuthenticator().make(), dictionary());
  ASSERT_EQ(built->errorMsg(), ErrorMsg::success);
  EXPECT_EQ(TestSupport::bytesOf(built->pkt()), PacketMaker(accessRequest)
                                                    .ownAuthenticatorIs(ByteVector(16))
                                                    .addMessageAuthenticator()
                                                    .make());
  EXPECT_EQ(hdr->authenticator(), Verda::String());
}

TEST(BuildPkt, TakesTheFirstSixteenBytesOfALongerAuthenticator) {
  const ByteVector authenticator = countingBytes(17, 0x30);
  const auto hdr = headerOf(accessRequest);
  hdr->authenticatorIs(Verda::String(std::span<const U8>(authenticator)));
  const auto built = buildPkt(nullptr, testSecret, {}, hdr, RequestMaker().make(), dictionary());
  EXPECT_EQ(TestSupport::bytesOf(built->pkt()), PacketMaker(accessRequest).make());
}

TEST(BuildPkt, SignsAResponseWithoutARequestAuthenticatorLikeARequest) {
  for (const bool withMessageAuthenticator : {false, true}) {
    RequestMaker request;
    PacketMaker expected(accessAccept);
    expected.reqAuthIs({});
    if (withMessageAuthenticator) {
      request.addMessageAuthenticator();
      expected.addMessageAuthenticator();
    }
    const auto built =
        buildPkt(nullptr, testSecret, {}, headerOf(accessAccept), request.make(), dictionary());
    ASSERT_EQ(built->errorMsg(), ErrorMsg::success);
    EXPECT_EQ(TestSupport::bytesOf(built->pkt()), expected.make());
  }
}

TEST(BuildPkt, MakesABufferOfItsOwnForEveryPacket) {
  const auto old = pktOf(PacketMaker(accountingRequest).make());
  const auto first = buildPkt(old, testSecret, {}, nullptr, RequestMaker().make(), dictionary());
  const auto second = buildPkt(old, testSecret, {}, nullptr, RequestMaker().make(), dictionary());
  first->pkt()->data()[0] = 99;
  EXPECT_EQ(TestSupport::bytesOf(second->pkt()), PacketMaker(accountingRequest).make());
  EXPECT_EQ(TestSupport::bytesOf(old), PacketMaker(accountingRequest).make());
}

TEST(BuildPkt, PassesOnThatAuthenticatorsCannotBeComputed) {
  struct Case {
    const char* name;
    U8 code;
    Primitive primitive;
    std::string message;
  };
  for (const Case& one : {
           Case{"Message-Authenticator of a request", 1, Primitive::hmac,
                "MD5 generation failed, digestLen: 0"},
           {"Message-Authenticator of a response", 2, Primitive::hmac,
            "MD5 generation failed, digestLen: 0"},
           {"request authenticator", 4, Primitive::md5, "MD5 digest of incorrect length: 0"},
           {"response authenticator", 2, Primitive::md5, "MD5 digest of incorrect length: 0"},
       }) {
    SCOPED_TRACE(one.name);
    const RequestMaker request =
        RequestMaker().add(userName, {text("nemo")}).addMessageAuthenticator();
    FaultSeam::failIs(one.primitive);
    const Built built = build(one.code, request);
    FaultSeam::failDel();
    expectFault(built, ErrorMsg::md5GenerationFailed, {one.message});
    const ByteVector old = PacketMaker(one.code).addMessageAuthenticator().make();
    FaultSeam::failIs(one.primitive);
    const Built modified = modify(old, {});
    FaultSeam::failDel();
    expectFault(modified, ErrorMsg::md5GenerationFailed, {one.message});
  }
}

TEST(BuildPkt, PassesOnThatTheRequestAuthenticatorIsShort) {
  const CapturingSink trace;
  const auto built =
      buildPkt(nullptr, testSecret, verdaBytes(ByteVector(15)), headerOf(accessAccept),
               RequestMaker().addMessageAuthenticator().make(), dictionary());
  EXPECT_EQ(built->errorMsg(), ErrorMsg::invalidBytesCopied);
  EXPECT_EQ(built->pkt(), nullptr);
  EXPECT_EQ(trace.records(), (Records{errorRecord("", "setMessageAuthenticator",
                                                  "Mismatch in bytes copied: 15, expected: 16")}));
}

TEST(BuildPkt, AssertsTheCallersMistakes) {
  const auto name = RequestMaker().add(userName, {text("nemo")}).make();
  const auto empty = RequestMaker().make();
  const auto reqAuth = verdaBytes(TestSupport::testReqAuth);
  const auto assertion = [](U8 code, const Verda::Bytes& given, const Ptr<PktInfoBuilder>& request,
                            const DictPtr& dict) {
    return TestSupport::assertionTextOf(
        [&] { buildPkt(nullptr, testSecret, given, headerOf(code), request, dict); });
  };
  for (const U8 code : ByteVector{1, 4, 12, 40, 43}) {
    EXPECT_EQ(assertion(code, reqAuth, name, dictionary()),
              "Request authenticator found not NULL for request packet");
    EXPECT_EQ(assertion(code, {}, name, dictionary()), std::nullopt);
  }
  for (const U8 code : ByteVector{2, 3, 5, 11, 41, 42, 44, 45, 99}) {
    EXPECT_EQ(assertion(code, {}, name, dictionary()),
              "Request authenticator found NULL for response packet");
    EXPECT_EQ(assertion(code, reqAuth, name, dictionary()), std::nullopt);
  }
  EXPECT_EQ(assertion(1, reqAuth, RequestMaker().addMessageAuthenticator().make(), dictionary()),
            "Request authenticator found not NULL for request packet");
  // The other requests' Message-Authenticators are signed as those of responses.
  for (const U8 code : ByteVector{4, 40, 43}) {
    EXPECT_EQ(
        assertion(code, reqAuth, RequestMaker().addMessageAuthenticator().make(), dictionary()),
        std::nullopt);
  }
  EXPECT_EQ(assertion(1, {}, nullptr, dictionary()), "pktInfoBuilder");
  EXPECT_EQ(assertion(1, {}, name, nullptr), "dict");
  EXPECT_EQ(assertion(1, {}, empty, nullptr), std::nullopt);
}

TEST(AttributeSteps, AssertThatTheyAreGivenWhatTheyWorkOn) {
  const auto hdr = headerOf(1);
  const auto request = RequestMaker().make();
  ByteVector pkt(4096);
  const auto adding = [&](const Ptr<RadiusHdr>& header, const Ptr<PktInfoBuilder>& toAdd, U8* to) {
    return TestSupport::assertionTextOf([&] {
      U16 length = 20;
      U8* msgAuthPos = nullptr;
      addAttributesToPkt(testSecret, {}, header, toAdd, to, length, msgAuthPos, dictionary());
    });
  };
  constexpr const char* addingText = "hdr && pktInfoBuilder && pkt != nullptr";
  EXPECT_EQ(adding(nullptr, request, pkt.data()), addingText);
  EXPECT_EQ(adding(hdr, nullptr, pkt.data()), addingText);
  EXPECT_EQ(adding(hdr, request, nullptr), addingText);
  EXPECT_EQ(adding(hdr, request, pkt.data()), std::nullopt);

  const ByteVector old = PacketMaker(1).make();
  const auto replacing = [&](const U8* from, U8* to, const Ptr<RadiusHdr>& header,
                             const Ptr<PktInfoBuilder>& changes) {
    return TestSupport::assertionTextOf([&] {
      U16 length = 0;
      U8* msgAuthPos = nullptr;
      replaceAttributesInPkt(from, to, testSecret, {}, header, changes, length, msgAuthPos,
                             dictionary());
    });
  };
  constexpr const char* replacingText =
      "hdr && pktInfoBuilder && oldPkt != nullptr && newPkt != nullptr";
  EXPECT_EQ(replacing(nullptr, pkt.data(), hdr, request), replacingText);
  EXPECT_EQ(replacing(old.data(), nullptr, hdr, request), replacingText);
  EXPECT_EQ(replacing(old.data(), pkt.data(), nullptr, request), replacingText);
  EXPECT_EQ(replacing(old.data(), pkt.data(), hdr, nullptr), replacingText);
  EXPECT_EQ(replacing(old.data(), pkt.data(), hdr, request), std::nullopt);
}

TEST(BuildPkt, TracesTheEntryOfEveryOperation) {
  const CapturingSink trace(Verda::traceEntries);
  const auto functionsOf = [&] {
    std::vector<std::string> functions;
    for (const CapturedRecord& record : trace.records()) {
      EXPECT_EQ(record.facility, "RadiusPacketParser::RadiusPktParser");
      EXPECT_EQ(record.level, Verda::traceEntries);
      EXPECT_EQ(record.className, "");
      EXPECT_EQ(record.text, "entry");
      functions.push_back(record.function);
    }
    return functions;
  };
  const RequestMaker request = RequestMaker().add(vendorNumber, {1U}).addMessageAuthenticator();
  buildPkt(nullptr, testSecret, {}, headerOf(accountingRequest), request.make(), dictionary());
  EXPECT_EQ(functionsOf(), (std::vector<std::string>{
                               "buildPkt", "addAttributesToPkt", "getAttrInfo", "addVsa",
                               "addIntegerDateTypes", "encryptAttribute", "setMessageAuthenticator",
                               "calculateMessageAuthenticator", "setRequestAuthenticator"}));
  const auto old = pktOf(PacketMaker(accessAccept).add(1, {'n'}).addVendor(9, 2, {}).make());
  const RequestMaker replacing = RequestMaker().replace(userName, {text("m")}).remove(vendorNumber);
  const auto reqAuth = verdaBytes(TestSupport::testReqAuth);
  const CapturingSink ofModify(Verda::traceEntries);
  buildPkt(old, testSecret, reqAuth, nullptr, replacing.make(), dictionary());
  std::vector<std::string> functions;
  for (const CapturedRecord& record : ofModify.records()) {
    functions.push_back(record.function);
  }
  EXPECT_EQ(functions,
            (std::vector<std::string>{"buildPkt", "replaceAttributesInPkt", "getAttrInfo",
                                      "addAttribute", "addStrTypes", "encryptAttribute",
                                      "addAttributesToPkt", "setResponseAuthenticator"}));
}

}  // namespace
