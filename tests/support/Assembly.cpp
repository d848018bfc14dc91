#include "tests/support/Assembly.h"

#include <algorithm>
#include <span>

#include <gtest/gtest.h>

namespace TestSupport::Assembly {

namespace {

Built outcomeOf(const Ptr<PktReturn>& built, const CapturingSink& trace) {
  EXPECT_EQ(built->errorMsg() == ErrorMsg::success, bool{built->pkt()});
  return {built->errorMsg(), built->pkt() ? bytesOf(built->pkt()) : ByteVector(), trace.records()};
}

/// How long the values of attributes are that take up exactly `bytes` bytes together.
Sizes valueSizesOf(std::size_t bytes) {
  Sizes sizes;
  while (bytes > 0) {
    // What is left behind an attribute must be none, or enough for another.
    const std::size_t length = bytes == 256 ? 253 : std::min<std::size_t>(bytes, 255);
    sizes.push_back(length - 2);
    bytes -= length;
  }
  return sizes;
}

}  // namespace

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

AttrValue octets(const ByteVector& bytes) {
  return verdaBytes(bytes);
}

std::vector<std::string> Built::texts() const {
  std::vector<std::string> texts;
  for (const CapturedRecord& record : records) {
    texts.push_back(record.text);
  }
  return texts;
}

Built build(U8 code, const RequestMaker& request) {
  const CapturingSink trace;
  return outcomeOf(buildPkt(nullptr, testSecret, verdaBytes(reqAuthFor(code)), headerOf(code),
                            request.make(), dictionary()),
                   trace);
}

Built modify(const ByteVector& packet, const RequestMaker& request) {
  const CapturingSink trace;
  const auto old = pktOf(packet);
  const Built built =
      outcomeOf(buildPkt(old, testSecret, verdaBytes(reqAuthFor(packet.empty() ? 1 : packet[0])),
                         nullptr, request.make(), dictionary()),
                trace);
  EXPECT_EQ(bytesOf(old), packet);
  return built;
}

void expectPacket(const Built& built, const PacketMaker& expected) {
  EXPECT_EQ(built.result, ErrorMsg::success);
  EXPECT_EQ(built.packet, expected.make());
  EXPECT_EQ(built.records, Records());
}

void expectFault(const Built& built, ErrorMsg fault, const std::vector<std::string>& texts) {
  EXPECT_EQ(built.result, fault);
  EXPECT_EQ(built.packet, ByteVector());
  EXPECT_EQ(built.texts(), texts);
}

RequestMaker& fillTo(std::size_t length, RequestMaker& request) {
  for (const std::size_t size : valueSizesOf(length - 20)) {
    request.add(classOctets, {octets(ByteVector(size, 0x55))});
  }
  return request;
}

PacketMaker& fillTo(std::size_t length, PacketMaker& packet, std::size_t start) {
  for (const std::size_t size : valueSizesOf(length - start)) {
    packet.add(25, ByteVector(size, 0x55));
  }
  return packet;
}

PacketMaker& addFragments(U8 type, const ByteVector& value, PacketMaker& packet) {
  std::span<const U8> rest = value;
  while (!rest.empty()) {
    const auto piece = rest.first(std::min<std::size_t>(rest.size(), 253));
    packet.add(type, ByteVector(piece.begin(), piece.end()));
    rest = rest.subspan(piece.size());
  }
  return packet;
}

}  // namespace TestSupport::Assembly
