#include "tool/input/TextInput.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <fmt/format.h>
#include <gtest/gtest.h>

namespace RadiusPacketTool {
namespace {

using Bytes = std::vector<Verda::U8>;

/// A packet of 20 bytes: the digits, and the bytes.
constexpr std::string_view digits = "0107001430313233343536373839414243444546";
const Bytes packet = parseHex(digits).front();

std::optional<PacketList> read(InputFormat format, std::string_view text,
                               std::size_t pieceSize = 1000000) {
  TextReader reader(format);
  while (!text.empty() && reader.wantsMore()) {
    const std::string_view piece = text.substr(0, pieceSize);
    reader.take(piece);
    text.remove_prefix(piece.size());
  }
  return reader.finish();
}

/// What is wrong with a text: the line, and the message.
std::string faultOf(InputFormat format, std::string_view text) {
  try {
    return read(format, text).has_value() ? "no fault" : "no text";
  } catch (const BadHex& fault) {
    return std::to_string(fault.line()) + ": " + fault.what();
  }
}

/// More bytes than all but one of the samples have.
constexpr std::size_t longPacket = 200;

struct Sample {
  std::string packet;
  std::string form;
  std::string text;
  Bytes bytes;
};

std::string readWhole(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

/// The files PACKET.FORM.txt; a packet's name may have dots in it.
std::vector<Sample> samples() {
  const std::filesystem::path folder = std::filesystem::path(TEST_DATA_DIR) / "pastes";
  std::vector<Sample> all;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    const std::filesystem::path& path = entry.path();
    if (path.extension() == ".txt") {
      const std::string name = path.stem().stem();
      all.push_back({.packet = name,
                     .form = path.stem().extension().string().substr(1),
                     .text = readWhole(path),
                     .bytes = parseHex(readWhole(folder / (name + ".hex.txt"))).front()});
    }
  }
  return all;
}

InputFormat formatOf(std::string_view form) {
  if (form == "hex" || form == "xxd-p") {
    return InputFormat::hex;
  }
  if (form == "xxd-i" || form == "python") {
    return InputFormat::literals;
  }
  return form.starts_with("base64") ? InputFormat::base64 : InputFormat::dump;
}

TEST(TextInput, ReadsWhatProgramsWrite) {
  const std::vector<Sample> all = samples();
  EXPECT_EQ(all.size(), 6U * 13U);
  for (const Sample& sample : all) {
    SCOPED_TRACE(sample.packet + " " + sample.form);
    const PacketList expected{sample.bytes};
    EXPECT_EQ(read(InputFormat::automatic, sample.text), expected);
    EXPECT_EQ(read(InputFormat::automatic, sample.text, 1), expected);
    EXPECT_EQ(read(formatOf(sample.form), sample.text), expected);
  }
}

TEST(TextInput, ReadsItBehindAByteOrderMarkAndWithOtherLineEnds) {
  for (const Sample& sample : samples()) {
    SCOPED_TRACE(sample.packet + " " + sample.form);
    std::string text = "\xef\xbb\xbf";
    for (const char c : sample.text) {
      text += c == '\n' ? "\r\n" : std::string(1, c);
    }
    const PacketList expected{sample.bytes};
    for (const std::size_t pieceSize : std::array<std::size_t, 3>{1, 2, 1000000}) {
      EXPECT_EQ(read(InputFormat::automatic, text, pieceSize), expected);
      EXPECT_EQ(read(formatOf(sample.form), text, pieceSize), expected);
    }
  }
}

TEST(TextInput, ReadsSeveralPacketsOfAForm) {
  for (const Sample& sample : samples()) {
    SCOPED_TRACE(sample.packet + " " + sample.form);
    const PacketList expected{sample.bytes, sample.bytes};
    EXPECT_EQ(read(InputFormat::automatic, sample.text + "\n" + sample.text), expected);
  }
}

/// Whether `bytes` is the front of a packet, or all of it.
bool isFrontOf(const Bytes& bytes, const Bytes& whole) {
  return bytes.size() <= whole.size() && std::equal(bytes.begin(), bytes.end(), whole.begin());
}

/// From where on a text is more than plain hex, be it an offset of zeros or the first letters of
/// base64.
std::size_t beginOfForm(const Sample& sample) {
  if (sample.form == "od") {  // nothing but single blanks in front of the text
    return sample.text.find('>');
  }
  switch (formatOf(sample.form)) {
    case InputFormat::dump:
      return sample.text.find_first_of("123456789abcdef", sample.text.find("0000"));
    case InputFormat::base64:
      return sample.text.find_first_not_of("0123456789abcdefABCDEF");
    default:
      return 0;
  }
}

TEST(TextInput, ReadsNothingButTheFrontOfThePacketFromATextThatIsCut) {
  for (const Sample& sample : samples()) {
    SCOPED_TRACE(sample.packet + " " + sample.form);
    // Of the long packet, whose texts have the same lines over and over, not every one.
    const std::size_t step = sample.bytes.size() > longPacket ? 61 : 1;
    for (std::size_t size = beginOfForm(sample) + 1; size < sample.text.size(); size += step) {
      SCOPED_TRACE(size);
      for (const InputFormat format : {InputFormat::automatic, formatOf(sample.form)}) {
        try {
          const auto packets = read(format, sample.text.substr(0, size));
          const bool isRead = packets.has_value() && !packets->empty();
          ASSERT_TRUE(!isRead || packets->size() == 1);
          ASSERT_TRUE(!isRead || isFrontOf(packets->front(), sample.bytes));
        } catch (const BadHex&) {
          // The other way in which a text that is cut may end.
        }
      }
    }
  }
}

/// How many bytes of a packet are not those of another.
std::size_t differences(const Bytes& bytes, const Bytes& whole) {
  std::size_t count = 0;
  for (std::size_t at = 0; at < bytes.size(); ++at) {
    count += bytes[at] == whole[at] ? 0 : 1;
  }
  return count;
}

TEST(TextInput, ReadsNothingElseFromATextWithAByteChanged) {
  for (const Sample& sample : samples()) {
    const bool hasText = sample.form == "xxd" || sample.form == "hexdump-C" ||
                         sample.form == "tshark-x" || sample.form == "tcpdump-text";
    const bool isSqueezed = sample.text.find("\n*\n") != std::string::npos;  // one byte is many
    if (!hasText || isSqueezed || sample.bytes.size() > longPacket) {
      continue;
    }
    SCOPED_TRACE(sample.packet + " " + sample.form);
    for (std::size_t at = 0; at < sample.text.size(); ++at) {
      for (const char c : {' ', 'e', '0', '|', '\n', 'z'}) {
        std::string text = sample.text;
        text[at] = c;
        try {
          const auto packets = read(InputFormat::dump, text);
          for (const Bytes& bytes : packets.value()) {
            ASSERT_LE(bytes.size(), sample.bytes.size()) << text;
          }
          ASSERT_TRUE(packets->size() != 1 || differences(packets->front(), sample.bytes) <= 1)
              << text;
        } catch (const BadHex&) {
          // A dump that contradicts itself.
        }
      }
    }
  }
}

struct Row {
  const char* name;
  std::string text;
  std::optional<PacketList> packets;
};

/// What could be read in several ways, and in which it is.
TEST(TextInput, FindsOutTheForm) {
  const std::vector<Row> rows = {
      {"nothing", "", PacketList{}},
      {"hex", std::string(digits), PacketList{packet}},
      {"hex behind a mark", "\xef\xbb\xbf" + std::string(digits), PacketList{packet}},
      {"a part of a mark", "\xef\xbb", std::nullopt},
      {"a mark", "\xef\xbb\xbf", PacketList{}},
      {"hex that begins with zeros", "0000 0102\n", PacketList{{0, 0, 1, 2}}},
      {"hex in groups", "00000000 00010203\n00000000 04050607\n",
       PacketList{{0, 0, 0, 0, 0, 1, 2, 3, 0, 0, 0, 0, 4, 5, 6, 7}}},
      {"hex whose offsets do not go on", "0000 01 04\n0003 05\n",
       PacketList{{0, 0, 1, 4, 0, 3, 5}}},
      {"hex with a comment", "0000  01 04 # a code\n", PacketList{{0, 0, 1, 4}}},
      {"hex with colons", "00:00:01:04\n", PacketList{{0, 0, 1, 4}}},
      {"offsets that go on", "0000 01 04\n0002 05\n", PacketList{{1, 4, 5}}},
      {"an offset with a colon", "0000: 0104\n", PacketList{{1, 4}}},
      {"an offset with two blanks", "0000  01 04\n", PacketList{{1, 4}}},
      {"two dumps", "0000 01 04\n0002 05\n0000 06\n", PacketList{{1, 4, 5}, {6}}},
      {"titles", "Frame (3 bytes):\n\n0000   01 04 05   ...\n\nEnd\n", PacketList{{1, 4, 5}}},
      {"bytes in two halves",
       "0000   01 04 05 06 07 08 09 0a  0b 0c   ..........\n000a   be ef   ..\n",
       PacketList{{1, 4, 5, 6, 7, 8, 9, 10, 11, 12, 0xbe, 0xef}}},
      {"text that looks like bytes",
       "0000   62 65 65 66 20 62 65 65  66 20 31 32 20 33 34 20   beef beef 12 34 \n"
       "0010   64 65 20 61                                       de a\n",
       PacketList{{0x62, 0x65, 0x65, 0x66, 0x20, 0x62, 0x65, 0x65, 0x66, 0x20,
                   0x31, 0x32, 0x20, 0x33, 0x34, 0x20, 0x64, 0x65, 0x20, 0x61}}},
      {"text of blanks at the end", "00000000: 0120  . \n00000002: 2020\n",
       PacketList{{1, 0x20, 0x20, 0x20}}},
      {"a line of text with an offset", "0000 things\n", std::nullopt},
      {"a dump without its begin", "0010  01 04  ..\n", std::nullopt},
      {"prose", "nothing of the kind, don't you think?\n", std::nullopt},
      {"control bytes", "0000  01 04\x01\n", std::nullopt},
      {"an array", "uint8_t p[] = {1, 0x04, 255,};", std::nullopt},
      {"an array that begins with hex", "uint8_t p[] = { /* one */\n0x01, 4, 255 // more\n};",
       PacketList{{1, 4, 255}}},
      {"arrays beside strings", "char *n = \"x\";\nchar p[] = {0x1};\nchar q[] = {0X2};",
       PacketList{{1}, {2}}},
      {"a string", R"("\x01\x07\x00\x14" "0123456789ABCDEF")", PacketList{packet}},
      {"pieces of a string", "\"\\x01\\x07\" \\\n \"\\x00\\x140123\" /* and */\n\"456789ABCDEF\";",
       PacketList{packet}},
      {"escapes without quotes", "\\x01\\x07\\\n\\x00\\x14\n", PacketList{{1, 7, 0, 20}}},
      {"strings apart", "b'\\x01\\x07\\x00\\x14'\nb'\\x02\\x07\\0\\24'\n\n'\\1\\a\\0\\x14'",
       PacketList{{1, 7, 0, 20}, {2, 7, 0, 20}, {1, 7, 0, 20}}},
      {"a string that is no packet", R"("\x01 and no more")", std::nullopt},
      {"the text of build", "ACCESS_REQUEST, id 7\nUser-Name = \"\\x01alice\"\n", std::nullopt},
      {"a string that does not end", R"("\x01\x07\x00\x14)", std::nullopt},
      {"base64", "AQcAFDAxMjM0NTY3ODlBQkNERUY=", PacketList{packet}},
      {"base64 without padding", "AQcAFDAxMjM0NTY3\n ODlBQkNERUY", PacketList{packet}},
      {"base64 of two",
       "AQcAFDAxMjM0NTY3ODlBQkNERUY=\nAQcAFDAxMjM0NTY3ODlBQkNERUY\n\n"
       "AQcAFDAxMjM0NTY3ODlBQkNERUY",
       PacketList{packet, packet, packet}},
      {"base64 that is cut", "AQcAFDAxMjM0NTY3ODlBQkNERQ==", std::nullopt},
      {"base64 of no packet", "aGVsbG8gd29ybGQ=", std::nullopt},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(read(InputFormat::automatic, row.text), row.packets);
    EXPECT_EQ(read(InputFormat::automatic, row.text, 1), row.packets);
  }
}

struct Fault {
  InputFormat format;
  std::string text;
  const char* fault;
};

TEST(TextInput, SaysWhatIsWrong) {
  using enum InputFormat;
  const std::vector<Fault> faults = {
      {dump, "0000  01 0g", "1: \"g\" is no hex digit"},
      {dump, "0000  01 0", "1: half a byte: an odd number of hex digits"},
      {dump, "0000  0104", "1: behind an offset without : each byte stands by itself"},
      {dump, "0000  01 04\n0003  05",
       "2: the offset is 0003, but the bytes in front of it end at 0002"},
      {dump, "0010  01", "1: the offset is 0010, but the bytes in front of it end at 0000"},
      {dump, "0000: " + std::string(66, '1'), "1: a line has at most 32 bytes"},
      {dump, "0000: 6265 6567  beef", "1: the text does not show the bytes in front of it"},
      {dump, "0000: 6265  be  \n0002: 6265 6566 beef", "2: the text behind the bytes is missing"},
      {dump, "0000: 62\n0001: 62  b", "2: the lines in front of this one have no text"},
      {dump, "0000: 62\n*\n", "2: the dump ends with lines left out"},
      {dump, "0000: 6262\n*\n0003\n",
       "3: the lines left out in front of this offset do not fill up to it"},
      {dump, "0000: 62\ntitle\n*\n0010: 01\n",
       "4: the lines left out in front of this offset do not fill up to it"},
      {dump, "*\n0010: 01\n", "2: the lines left out in front of this offset do not fill up to it"},
      {automatic, "0000000 0701 1400\n0000004\n",
       "1: this is hexdump without -C, which swaps bytes: use hexdump -C"},
      {automatic, "0000  01 04  ..\n\n0002  05  .\n0004  06  .\n",
       "4: the offset is 0004, but the bytes in front of it end at 0003"},
      {automatic, "x[] = {\n0x01, 256}", "2: an array holds numbers from 0 to 255"},
      {automatic, "x[] = {0x001}", "1: an array holds numbers from 0 to 255"},
      {automatic, "x[] = {0x01, 010}", "1: an array holds numbers from 0 to 255"},
      {automatic, "x[] = {0x01 0x02}", "1: numbers of an array have commas between them"},
      {automatic, "x[] = {0x01,\n0x0", "2: the array has no end"},
      {automatic, "x[] = {0x01,\n", "2: the array has no end"},
      {literals, "\"\\x01\n\"", "1: the string has no closing quote"},
      {literals, R"("\x1")", R"(1: behind \x stand two hex digits)"},
      {literals, R"("\q")", "1: no escape of C stands behind this backslash"},
      {literals, R"("\400")", R"(1: an octal escape is at most \377)"},
      {literals, R"(\n)", R"(1: outside quotes, the escapes are \xNN)"},
      {base64, "AQ\n\x7f", "1: there are control bytes in the text"},
      {base64, "AQ\n!", "2: \"!\" is no letter of this base64"},
      {base64, "+AA_", "1: \"_\" is no letter of this base64"},
      {base64, "AQ===", "1: a = stands where no padding belongs"},
      {base64, "A=", "1: a = stands where no padding belongs"},
      {base64, "AQ=", "1: the base64 ends within a byte"},
      {base64, "A", "1: the base64 ends within a byte"},
      {base64, "AR", "1: the base64 ends within a byte"},
      {hex, "0000  01 04  ..", "1: \".\" is no hex digit"},
  };
  for (const Fault& fault : faults) {
    SCOPED_TRACE(fault.text);
    EXPECT_EQ(faultOf(fault.format, fault.text), fault.fault);
  }
}

/// The bytes of a packet as a dump of one line for 16.
std::string dumpOf(const Bytes& bytes) {
  std::string text;
  for (std::size_t at = 0; at < bytes.size(); ++at) {
    text += at % 16 == 0 ? fmt::format("\n{:04x} ", at) : "";
    text += fmt::format(" {:02x}", bytes[at]);
  }
  return text;
}

TEST(TextInput, SaysThatAFrameIsMoreThanAPacket) {
  Bytes ipv4(20, 0);
  ipv4[0] = 0x45;
  ipv4[9] = 17;
  Bytes ipv6(40, 0);
  ipv6[0] = 0x60;
  ipv6[6] = 17;
  for (const auto& [ip, etherType] :
       {std::pair(ipv4, Bytes{8, 0}), std::pair(ipv6, Bytes{0x86, 0xdd})}) {
    Bytes frame(12, 2);
    frame.insert(frame.end(), etherType.begin(), etherType.end());
    frame.insert(frame.end(), ip.begin(), ip.end());
    for (const Bytes& bytes : {ip, frame}) {
      EXPECT_EQ(faultOf(InputFormat::automatic, dumpOf(bytes)),
                "2: the headers of a frame stand in front of the packet: give the bytes of the UDP "
                "payload alone, or the capture");
    }
    Bytes tcp = frame;
    tcp[frame.size() - ip.size() + (ip.size() == 20 ? 9 : 6)] = 6;
    EXPECT_EQ(read(InputFormat::automatic, dumpOf(tcp)), PacketList{tcp});
  }
}

TEST(TextInput, KeepsNoMoreThanTheGreatestPacket) {
  constexpr std::size_t greatest = 4096;
  const PacketList zeros{Bytes(greatest, 0)};
  EXPECT_EQ(read(InputFormat::automatic, "00000000: 0000\n*\nfffffffffffffffe: 0000\n"), zeros);
  EXPECT_EQ(read(InputFormat::dump, dumpOf(Bytes(greatest + 1, 0))), zeros);
  EXPECT_EQ(read(InputFormat::base64, std::string(6000, 'A')), zeros);
  std::string array = "{0x0";
  for (std::size_t count = 0; count < greatest; ++count) {
    array += ",0";
  }
  EXPECT_EQ(read(InputFormat::automatic, array + "}"), zeros);
}

TEST(TextInput, LooksForFormsInTextOfBoundedSizeOnly) {
  const std::string much(std::size_t{9} * 1024 * 1024, ' ');
  EXPECT_EQ(read(InputFormat::automatic, much + "AQcAFDAxMjM0NTY3ODlBQkNERUY="), std::nullopt);
  EXPECT_EQ(read(InputFormat::automatic, much + std::string(digits)), PacketList{packet});
  EXPECT_EQ(faultOf(InputFormat::base64, much + "AQ"), "1: the text is longer than 8 MiB");
}

}  // namespace
}  // namespace RadiusPacketTool
