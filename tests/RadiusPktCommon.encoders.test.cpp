#include "RadiusPacketParser/RadiusPktCommon.h"

#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/CapturingSink.h"
#include "tests/support/Digests.h"
#include "tests/support/Hex.h"
#include "tests/support/TestDictionary.h"
#include "tests/support/Walk.h"

namespace {

using RadiusPacketParser::RadiusAttributeType;
using namespace RadiusPktParserBase;
using TestSupport::ByteVector;
using TestSupport::CapturingSink;
using TestSupport::countingBytes;
using TestSupport::DataType;
using TestSupport::errorRecord;
using TestSupport::fromHex;
using TestSupport::joined;
using TestSupport::Records;
using TestSupport::Sizes;
using TestSupport::verdaBytes;
using Verda::U16;
using Verda::U32;
using Verda::U8;
using Zonet::IpGenPrefix;

/// What a buffer holds where nothing was written.
constexpr U8 untouched = 0xee;

const std::vector<bool> bothForms{false, true};

AttrInfo infoOf(DataType type, bool isTagged) {
  AttrInfo info;
  info.isInDict = true;
  info.isTagged = isTagged;
  info.attributeType = type;
  return info;
}

using Encode = std::function<ErrorMsg(U8* buf, U16 curLen)>;

/// What an encoder did with a buffer of `room` bytes, a block of exactly that size.
struct Written {
  ErrorMsg result;
  ByteVector buffer;
  Records records;
};

Written write(const Encode& encode, std::size_t room, U16 curLen, int threshold = 0) {
  const CapturingSink trace(threshold);
  ByteVector buffer(room, untouched);
  const ErrorMsg result = encode(buffer.data(), curLen);
  return {result, buffer, trace.records()};
}

/// Type, Length and value of an attribute; in vendor form with the outer attribute of which an
/// encoder writes the Length alone.
ByteVector encoded(U8 attrId, const ByteVector& value, bool isVsa) {
  const ByteVector unit = joined({ByteVector{attrId, static_cast<U8>(value.size() + 2)}, value});
  if (!isVsa) {
    return unit;
  }
  const ByteVector outer{
      untouched, static_cast<U8>(value.size() + 8), untouched, untouched, untouched, untouched};
  return joined({outer, unit});
}

ByteVector followedByUntouched(const ByteVector& bytes, std::size_t room) {
  ByteVector buffer = bytes;
  buffer.resize(room, untouched);
  return buffer;
}

Records noRoomRecord(const std::string& function, U8 attrId, std::size_t length, U16 curLen) {
  return {errorRecord("", function,
                      "Attribute: " + std::to_string(attrId) +
                          " Length: " + std::to_string(length) +
                          " addition exceeds max packet length " + std::to_string(curLen))};
}

// ---- Every encoder ----

/// One call of an encoder, and all that it writes.
struct EncoderCase {
  const char* name;
  const char* function;
  Encode encode;
  ByteVector expected;
  bool saysWhenThereIsNoRoom = true;
};

const IpGenPrefix ip4{Verda::String("192.0.2.33")};
const IpGenPrefix ip6{Verda::String("2001:db8:1:2:a1b2:c3d4:e5f6:7")};
const IpGenPrefix ip6Prefix{Verda::String("2001:db8:aaaa:bbbb:cccc:dddd:eeee:ffff/32")};

Encode text(const std::string& value, bool isTagged, bool isVsa, U8 tag = 0x11) {
  return [=](U8* buf, U16 curLen) {
    return addStrTypes(buf, 7, value, tag, infoOf(RadiusAttributeType::string, isTagged), isVsa,
                       curLen);
  };
}

Encode octets(const ByteVector& value, bool isVsa) {
  return
      [=](U8* buf, U16 curLen) { return addOctetTypes(buf, 7, verdaBytes(value), isVsa, curLen); };
}

Encode number(DataType type, U32 value, bool isTagged, bool isVsa, U8 tag = 0x11) {
  return [=](U8* buf, U16 curLen) {
    return addIntegerDateTypes(buf, 7, value, tag, infoOf(type, isTagged), isVsa, curLen);
  };
}

using AddressEncoder = ErrorMsg(U8*, U8, const IpGenPrefix&, U16);

Encode address(AddressEncoder* encoder, const IpGenPrefix& prefix) {
  return [=](U8* buf, U16 curLen) { return encoder(buf, 7, prefix, curLen); };
}

std::vector<EncoderCase> encoderCases() {
  const DataType integer = RadiusAttributeType::integer;
  const DataType date = RadiusAttributeType::date;
  std::vector<EncoderCase> cases;
  for (const bool isVsa : bothForms) {
    const auto all = [isVsa](const char* hex) { return encoded(7, fromHex(hex), isVsa); };
    const std::vector<EncoderCase> inThisForm{
        {"text", "addStrTypes", text("nemo", false, isVsa), all("6e656d6f")},
        {"text of any bytes", "addStrTypes", text(std::string("a\0\xff", 3), false, isVsa),
         all("6100ff")},
        {"no text", "addStrTypes", text("", false, isVsa), all("")},
        {"tagged text", "addStrTypes", text("nemo", true, isVsa), all("116e656d6f")},
        {"tagged, no text", "addStrTypes", text("", true, isVsa), all("11")},
        {"text, tag of 255", "addStrTypes", text("n", true, isVsa, 0xff), all("ff6e")},
        {"octets", "addOctetTypes", octets(fromHex("00ff8001"), isVsa), all("00ff8001")},
        {"no octets", "addOctetTypes", octets({}, isVsa), all("")},
        {"integer", "addIntegerDateTypes", number(integer, 0x01020304, false, isVsa),
         all("01020304")},
        {"tagged integer", "addIntegerDateTypes", number(integer, 0x01020304, true, isVsa),
         all("11020304")},
        {"tagged integer, tag 0", "addIntegerDateTypes",
         number(integer, 0xffffffff, true, isVsa, 0), all("00ffffff")},
        {"date", "addIntegerDateTypes", number(date, 0xfffefdfc, false, isVsa), all("fffefdfc")},
        {"tagged date", "addIntegerDateTypes", number(date, 0x01020304, true, isVsa),
         all("01020304")},
    };
    cases.insert(cases.end(), inThisForm.begin(), inThisForm.end());
  }
  const std::vector<EncoderCase> addresses{
      {"ipv4", "addIpv4Types", address(addIpv4Types, ip4), fromHex("0706c0000221"), false},
      {"ipv6", "addIpv6Types", address(addIpv6Types, ip6),
       fromHex("071220010db800010002a1b2c3d4e5f60007"), false},
      {"ipv6 prefix", "addIpv6PrefixTypes", address(addIpv6PrefixTypes, ip6Prefix),
       fromHex("0714002020010db8aaaabbbbccccddddeeeeffff"), false},
      {"interface id", "addIfidTypes", address(addIfidTypes, ip6), fromHex("070aa1b2c3d4e5f60007"),
       false},
  };
  cases.insert(cases.end(), addresses.begin(), addresses.end());
  return cases;
}

TEST(Encoders, WriteTheAttributeAndNothingElse) {
  for (const EncoderCase& one : encoderCases()) {
    SCOPED_TRACE(std::string(one.name) + ", " + std::to_string(one.expected.size()) + " bytes");
    const Written written = write(one.encode, 300, 20);
    EXPECT_EQ(written.result, ErrorMsg::success);
    EXPECT_EQ(written.buffer, followedByUntouched(one.expected, 300));
    EXPECT_EQ(written.records, Records());
  }
}

TEST(Encoders, WriteAnAttributeThatEndsThePacketAtItsLongest) {
  for (const EncoderCase& one : encoderCases()) {
    SCOPED_TRACE(std::string(one.name) + ", " + std::to_string(one.expected.size()) + " bytes");
    const std::size_t length = one.expected.size();
    const Written written = write(one.encode, length, static_cast<U16>(4096 - length));
    EXPECT_EQ(written.result, ErrorMsg::success);
    EXPECT_EQ(written.buffer, one.expected);
    EXPECT_EQ(written.records, Records());
  }
}

TEST(Encoders, WriteNothingThatWouldEndThePacketOneByteLater) {
  for (const EncoderCase& one : encoderCases()) {
    SCOPED_TRACE(std::string(one.name) + ", " + std::to_string(one.expected.size()) + " bytes");
    const std::size_t length = one.expected.size();
    for (const std::size_t curLen : Sizes{4097 - length, 4096, 65535}) {
      const Written refused = write(one.encode, length, static_cast<U16>(curLen));
      EXPECT_EQ(refused.result, ErrorMsg::maxPktLengthExceeded);
      EXPECT_EQ(refused.buffer, ByteVector(length, untouched));
      EXPECT_EQ(refused.records, one.saysWhenThereIsNoRoom ? noRoomRecord(one.function, 7, length,
                                                                          static_cast<U16>(curLen))
                                                           : Records());
    }
  }
}

TEST(Encoders, TraceTheirEntry) {
  for (const EncoderCase& one : encoderCases()) {
    SCOPED_TRACE(one.name);
    EXPECT_EQ(write(one.encode, 300, 20, Verda::traceEntries).records,
              (Records{{"RadiusPacketParser::RadiusPktParser", Verda::traceEntries, "",
                        one.function, "entry"}}));
  }
}

TEST(Encoders, ResultsDoNotDependOnTrace) {
  for (const EncoderCase& one : encoderCases()) {
    SCOPED_TRACE(one.name);
    EXPECT_EQ(write(one.encode, 300, 20, Verda::traceOff).result, ErrorMsg::success);
    EXPECT_EQ(write(one.encode, 300, 4096, Verda::traceOff).result, ErrorMsg::maxPktLengthExceeded);
  }
}

// ---- How long a value may be ----

struct LengthCase {
  std::size_t length;
  bool isTagged;
};

void expectText(const LengthCase& one, bool isVsa) {
  SCOPED_TRACE(testing::Message() << one.length << " bytes, tagged " << one.isTagged << ", vendor "
                                  << isVsa);
  const std::string value(one.length, 't');
  const std::size_t length = one.length + (one.isTagged ? 3 : 2);
  const Written written = write(text(value, one.isTagged, isVsa), 300, 20);
  if (length <= 255) {
    const ByteVector tag(one.isTagged ? 1 : 0, 0x11);
    EXPECT_EQ(written.result, ErrorMsg::success);
    EXPECT_EQ(
        written.buffer,
        followedByUntouched(encoded(7, joined({tag, TestSupport::bytesOf(value)}), isVsa), 300));
    EXPECT_EQ(written.records, Records());
  } else {
    EXPECT_EQ(written.result, ErrorMsg::invalidAttrLength);
    EXPECT_EQ(written.buffer, ByteVector(300, untouched));
    EXPECT_EQ(written.records,
              (Records{errorRecord("", "addStrTypes",
                                   "Attribute: 7 with invalid length " + std::to_string(length))}));
  }
}

TEST(TextEncoder, WritesUpToTheLongestValue) {
  for (const bool isVsa : bothForms) {
    for (const std::size_t length : Sizes{0, 1, 244, 245, 246, 247, 248, 252, 253}) {
      expectText({length, false}, isVsa);
    }
    for (const std::size_t length : Sizes{0, 1, 244, 245, 246, 247, 248, 251, 252}) {
      expectText({length, true}, isVsa);
    }
  }
}

TEST(TextEncoder, RefusesLongerValuesWithoutWrapping) {
  for (const bool isVsa : bothForms) {
    // At 65,534 a length of 16 bits would start again at 0.
    for (const std::size_t length : Sizes{254, 255, 256, 65533, 65534, 65535, 65536}) {
      expectText({length, false}, isVsa);
    }
    for (const std::size_t length : Sizes{253, 254, 255, 256, 65533, 65534, 65535}) {
      expectText({length, true}, isVsa);
    }
  }
}

TEST(OctetsEncoder, WritesUpToTheLongestValue) {
  for (const bool isVsa : bothForms) {
    for (const std::size_t length : Sizes{0, 1, 244, 245, 246, 247, 248, 249, 250, 251, 252, 253}) {
      SCOPED_TRACE(testing::Message() << length << " bytes, vendor " << isVsa);
      const ByteVector value = countingBytes(length, 3);
      const Written written = write(octets(value, isVsa), 300, 20);
      EXPECT_EQ(written.result, ErrorMsg::success);
      EXPECT_EQ(written.buffer, followedByUntouched(encoded(7, value, isVsa), 300));
      EXPECT_EQ(written.records, Records());
    }
  }
}

TEST(OctetsEncoder, RefusesLongerValuesWithoutWrapping) {
  for (const bool isVsa : bothForms) {
    for (const std::size_t length : Sizes{254, 255, 256, 65533, 65534, 65535, 65536}) {
      SCOPED_TRACE(testing::Message() << length << " bytes, vendor " << isVsa);
      const Written refused = write(octets(ByteVector(length), isVsa), 300, 20);
      EXPECT_EQ(refused.result, ErrorMsg::invalidAttrLength);
      EXPECT_EQ(refused.buffer, ByteVector(300, untouched));
      EXPECT_EQ(
          refused.records,
          (Records{errorRecord("", "addOctetTypes",
                               "Attribute: 7 with invalid length " + std::to_string(length + 2))}));
    }
  }
}

TEST(VendorForm, WritesTheOuterLengthModulo256) {
  struct Outer {
    std::size_t value;
    U8 length;
  };
  for (const Outer& outer :
       {Outer{245, 253}, {246, 254}, {247, 255}, {248, 0}, {249, 1}, {253, 5}}) {
    SCOPED_TRACE(outer.value);
    ByteVector front(8, untouched);
    front[1] = outer.length;
    front[6] = 7;
    front[7] = static_cast<U8>(outer.value + 2);
    const ByteVector value = countingBytes(outer.value);
    EXPECT_EQ(write(octets(value, true), 300, 20).buffer,
              followedByUntouched(joined({front, value}), 300));
    const std::string behindTag(outer.value - 1, 't');
    EXPECT_EQ(write(text(behindTag, true, true), 300, 20).buffer,
              followedByUntouched(
                  joined({front, ByteVector{0x11}, TestSupport::bytesOf(behindTag)}), 300));
  }
}

TEST(VendorForm, NeedsRoomForAllThatIsWrittenWhateverTheOuterLengthSays) {
  const ByteVector value = countingBytes(253, 1);
  const Written fits = write(octets(value, true), 261, 4096 - 261);
  EXPECT_EQ(fits.result, ErrorMsg::success);
  EXPECT_EQ(fits.buffer, encoded(7, value, true));
  const Written refused = write(octets(value, true), 261, 4096 - 260);
  EXPECT_EQ(refused.result, ErrorMsg::maxPktLengthExceeded);
  EXPECT_EQ(refused.buffer, ByteVector(261, untouched));
  EXPECT_EQ(refused.records, noRoomRecord("addOctetTypes", 7, 261, 4096 - 260));
}

TEST(Encoders, LookAtTheValuesLengthBeforeThePackets) {
  for (const bool isVsa : bothForms) {
    const Written refused = write(octets(ByteVector(254), isVsa), 256, 4096);
    EXPECT_EQ(refused.result, ErrorMsg::invalidAttrLength);
    EXPECT_EQ(refused.buffer, ByteVector(256, untouched));
    EXPECT_EQ(refused.records,
              (Records{errorRecord("", "addOctetTypes", "Attribute: 7 with invalid length 256")}));
  }
}

TEST(Encoders, WriteEveryAttributeNumber) {
  for (const U8 attrId : {U8{0}, U8{26}, U8{80}, U8{255}}) {
    ByteVector buffer(3, untouched);
    EXPECT_EQ(addOctetTypes(buffer.data(), attrId, {0x41}, false, 20), ErrorMsg::success);
    EXPECT_EQ(buffer, (ByteVector{attrId, 3, 0x41}));
  }
}

// ---- Addresses ----

TEST(AddressEncoders, RefuseTheOtherFamily) {
  struct Case {
    const char* name;
    AddressEncoder* encoder;
    IpGenPrefix prefix;
  };
  for (const Case& one : {Case{"ipv4", addIpv4Types, ip6}, Case{"ipv6", addIpv6Types, ip4},
                          Case{"prefix", addIpv6PrefixTypes, ip4}, Case{"ifid", addIfidTypes, ip4},
                          Case{"no address", addIpv6Types, IpGenPrefix()}}) {
    SCOPED_TRACE(one.name);
    const Written refused = write(address(one.encoder, one.prefix), 20, 20);
    EXPECT_EQ(refused.result, ErrorMsg::invalidAttrDataType);
    EXPECT_EQ(refused.buffer, ByteVector(20, untouched));
    EXPECT_EQ(refused.records, Records());
  }
}

TEST(AddressEncoders, WriteThePrefixAndAllSixteenBytesWhateverItsLength) {
  for (const U8 length : {U8{0}, U8{1}, U8{32}, U8{64}, U8{127}, U8{128}}) {
    const IpGenPrefix prefix(ip6Prefix.address(), length);
    const ByteVector expected =
        joined({ByteVector{7, 20, 0, length}, fromHex("20010db8aaaabbbbccccddddeeeeffff")});
    EXPECT_EQ(write(address(addIpv6PrefixTypes, prefix), 20, 20).buffer, expected);
  }
}

TEST(AddressEncoders, WriteTheWholeAddressOfAPrefixGivenInPlaceOfAnAddress) {
  EXPECT_EQ(write(address(addIpv4Types, IpGenPrefix(Verda::String("192.0.2.33/8"))), 6, 20).buffer,
            fromHex("0706c0000221"));
  EXPECT_EQ(write(address(addIpv6Types, ip6Prefix), 18, 20).buffer,
            fromHex("071220010db8aaaabbbbccccddddeeeeffff"));
}

}  // namespace
