#include "RadiusPacketParser/RadiusPktParser.h"

#include <vector>

#include <gtest/gtest.h>

#include "tests/support/CapturingSink.h"
#include "tests/support/Walk.h"

namespace {

using namespace RadiusPktParserBase;
using TestSupport::ByteVector;
using TestSupport::CapturedRecord;
using TestSupport::CapturingSink;
using TestSupport::countingBytes;
using TestSupport::DictionaryMaker;
using TestSupport::DictPtr;
using TestSupport::errorRecord;
using TestSupport::pktOf;
using Verda::U32;
using Verda::U8;

/// A buffer of `size` bytes whose Length field says `length`.
ByteVector packet(std::size_t size, U32 length) {
  ByteVector bytes = countingBytes(size, 0x10);
  if (size >= 4) {
    bytes[2] = static_cast<U8>(length >> 8U);
    bytes[3] = static_cast<U8>(length);
  }
  return bytes;
}

struct HeaderCase {
  const char* name;
  std::size_t size;
  U32 length;
  std::string trace;  ///< empty: the header is taken
};

const std::vector<HeaderCase> headerCases{
    {"empty buffer", 0, 0, "Packet has invalid length: 0"},
    {"one byte", 1, 0, "Packet has invalid length: 1"},
    {"three bytes", 3, 0, "Packet has invalid length: 3"},
    {"buffer of 19, Length not read", 19, 20, "Packet has invalid length: 19"},
    {"buffer of 19 with a bad Length", 19, 4097, "Packet has invalid length: 19"},
    {"Length 0", 20, 0, "Invalid packet header length: 0"},
    {"Length 19", 20, 19, "Invalid packet header length: 19"},
    {"Length 20", 20, 20, ""},
    {"Length 21 in 20 bytes", 20, 21, "Packet's Length: 20 and header length: 21 mismatch"},
    {"Length 25 in 30 bytes", 30, 25, ""},
    {"Length 40 in 30 bytes", 30, 40, "Packet's Length: 30 and header length: 40 mismatch"},
    {"Length 19 in a long buffer", 100, 19, "Invalid packet header length: 19"},
    {"Length 4096 in 4096 bytes", 4096, 4096, ""},
    {"Length 4096 in 4095 bytes", 4095, 4096,
     "Packet's Length: 4095 and header length: 4096 mismatch"},
    {"Length 4097 in 4097 bytes", 4097, 4097, "Invalid packet header length: 4097"},
    {"Length 4097 in 20 bytes", 20, 4097, "Invalid packet header length: 4097"},
    {"Length 65535 in 65535 bytes", 65535, 65535, "Invalid packet header length: 65535"},
    {"Length 20 in 65536 bytes", 65536, 20, ""},
};

Verda::Ptr<RadiusPktParser> parser() {
  return radiusPktParserFactory(DictPtr());
}

TEST(PacketHeader, IsCheckedInOrder) {
  for (const HeaderCase& row : headerCases) {
    SCOPED_TRACE(row.name);
    const CapturingSink trace;
    const auto result = parser()->getHeader(pktOf(packet(row.size, row.length)));
    if (row.trace.empty()) {
      EXPECT_EQ(result->errorMsg(), ErrorMsg::success);
      ASSERT_FALSE(result->hdr() == nullptr);
      EXPECT_EQ(result->hdr()->length(), row.length);
      EXPECT_EQ(trace.records(), std::vector<CapturedRecord>());
    } else {
      EXPECT_EQ(result->errorMsg(), ErrorMsg::invalidPktLength);
      EXPECT_TRUE(result->hdr() == nullptr);
      EXPECT_EQ(
          trace.records(),
          (std::vector<CapturedRecord>{errorRecord("RadiusPktParser", "getHeader", row.trace)}));
    }
  }
}

TEST(PacketHeader, IsCheckedAlikeByTheWalk) {
  for (const HeaderCase& row : headerCases) {
    if (row.trace.empty()) {
      continue;
    }
    SCOPED_TRACE(row.name);
    const auto walked = TestSupport::walk(packet(row.size, row.length), {}, nullptr);
    EXPECT_EQ(walked.result, ErrorMsg::invalidPktLength);
    EXPECT_EQ(
        walked.records,
        (std::vector<CapturedRecord>{errorRecord("RadiusPktParser", "getHeader", row.trace)}));
    EXPECT_TRUE(walked.packetUnchanged);
  }
}

TEST(PacketHeader, IsRefusedWithoutAPacket) {
  const CapturingSink trace;
  const auto result = parser()->getHeader(nullptr);
  EXPECT_EQ(result->errorMsg(), ErrorMsg::invalidPktPtr);
  EXPECT_TRUE(result->hdr() == nullptr);
  EXPECT_EQ(trace.records(),
            (std::vector<CapturedRecord>{errorRecord("RadiusPktParser", "getHeader",
                                                     "Null pointer passed instead of packet")}));
}

TEST(PacketHeader, GivesCodeIdLengthAndAuthenticator) {
  const auto result = parser()->getHeader(pktOf(packet(300, 0x0102)));
  ASSERT_EQ(result->errorMsg(), ErrorMsg::success);
  EXPECT_EQ(result->hdr()->code(), 0x10);
  EXPECT_EQ(result->hdr()->id(), 0x11);
  EXPECT_EQ(result->hdr()->length(), 0x0102);
  const ByteVector authenticator = countingBytes(16, 0x14);
  EXPECT_EQ(result->hdr()->authenticator(),
            std::string(authenticator.begin(), authenticator.end()));
}

TEST(PacketHeader, KeepsAnAuthenticatorOfZeros) {
  const auto result =
      parser()->getHeader(pktOf({1, 2, 0, 20, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
  ASSERT_EQ(result->errorMsg(), ErrorMsg::success);
  EXPECT_EQ(result->hdr()->authenticator(), std::string(16, '\0'));
}

TEST(PacketHeader, TakesAnyCode) {
  for (U32 code = 0; code < 256; ++code) {
    ByteVector bytes = packet(20, 20);
    bytes[0] = static_cast<U8>(code);
    const auto result = parser()->getHeader(pktOf(bytes));
    ASSERT_EQ(result->errorMsg(), ErrorMsg::success);
    EXPECT_EQ(result->hdr()->code(), code);
    const ByteVector authenticator = countingBytes(16, 0x14);
    EXPECT_EQ(result->hdr()->authenticator(),
              std::string(authenticator.begin(), authenticator.end()));
  }
}

TEST(PacketHeader, LeavesThePacketAlone) {
  const ByteVector bytes = packet(30, 25);
  const auto pkt = pktOf(bytes);
  parser()->getHeader(pkt);
  EXPECT_EQ(TestSupport::bytesOf(pkt), bytes);
}

TEST(PacketHeader, ResultsDoNotDependOnTrace) {
  const CapturingSink silent(Verda::traceOff);
  EXPECT_EQ(parser()->getHeader(nullptr)->errorMsg(), ErrorMsg::invalidPktPtr);
  EXPECT_EQ(parser()->getHeader(pktOf(packet(19, 19)))->errorMsg(), ErrorMsg::invalidPktLength);
  EXPECT_EQ(silent.records(), std::vector<CapturedRecord>());
}

TEST(ParserEntity, SharesItsDictionaryAndLetsGoOfIt) {
  const DictPtr dictionary = DictionaryMaker().make();
  ASSERT_EQ(dictionary->userCount(), 1U);
  {
    const auto made = radiusPktParserFactory(dictionary);
    EXPECT_TRUE(made->dictionary() == dictionary);
    EXPECT_EQ(dictionary->userCount(), 2U);
    const auto other = RadiusPktParser::RadiusPktParserIs(dictionary);
    EXPECT_FALSE(other == made);
    EXPECT_TRUE(other->dictionary() == dictionary);
    const RadiusPktParser inPlace(dictionary);
    EXPECT_TRUE(inPlace.dictionary() == dictionary);
    EXPECT_EQ(dictionary->userCount(), 4U);
  }
  EXPECT_EQ(dictionary->userCount(), 1U);
}

TEST(ParserEntity, WorksWithoutADictionaryWhileNothingIsLookedUp) {
  const auto walked =
      TestSupport::walk(TestSupport::PacketMaker(2).make(), TestSupport::testReqAuth, nullptr);
  EXPECT_EQ(walked.result, ErrorMsg::success);
}

TEST(ParserEntity, HasAHookThatDoesNothing) {
  const CapturingSink trace(Verda::traceEntries);
  const auto sink = pktInfoParserFactory();
  parser()->doProcessAttribute(standardAttribute(1), AttrValue(), AttrInfo(), sink);
  EXPECT_FALSE(sink->msgAuthPresent());
  EXPECT_EQ(trace.records(), std::vector<CapturedRecord>());
}

TEST(ParserEntity, HasItsOwnType) {
  EXPECT_EQ(parser()->typeData().name, "RadiusPktParser");
  EXPECT_EQ(pktInfoParserFactory()->typeData().name, "PktInfoParser");
}

TEST(SinkEntity, BeginsWithoutAMessageAuthenticator) {
  for (const auto& sink : {pktInfoParserFactory(), PktInfoParser::PktInfoParserIs()}) {
    EXPECT_FALSE(sink->msgAuthPresent());
    sink->msgAuthPresentIs(true);
    EXPECT_TRUE(sink->msgAuthPresent());
  }
}

}  // namespace
