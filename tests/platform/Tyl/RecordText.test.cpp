#include "Tyl/RecordText.h"

#include <limits>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "tests/platform/Tyl/ToyEnumerations.h"
#include "tests/support/ThrownText.h"

namespace {

using TestSupport::thrownText;
using TylTest::Colour;
using Verda::U16;
using Verda::U64;
using Verda::U8;

/// A record with a field of each kind.
struct Toy {
  bool isOn = false;
  U8 size = 0;
  U64 weight = 0;
  Colour colour = Colour::green;
  Verda::String label;

  bool operator==(const Toy&) const = default;
};

template <typename Record, typename ToyOrConst>
void eachField(Record& record, ToyOrConst& toy) {
  record.field("isOn", toy.isOn);
  record.field("size", toy.size);
  record.field("weight", toy.weight);
  record.field("colour", toy.colour);
  record.field("label", toy.label);
}

Verda::String written(const Toy& toy) {
  Tyl::RecordWriter record;
  eachField(record, toy);
  return record.text();
}

Toy read(std::string_view text) {
  Toy toy;
  Tyl::RecordReader record(text);
  eachField(record, toy);
  record.end();
  return toy;
}

const Toy fullToy{true, 255, std::numeric_limits<U64>::max(), Colour::darkBlue,
                  std::string_view("a \"b\" \\ \n\0\xFF", 11)};

TEST(RecordText, WritesFieldsInOrder) {
  EXPECT_EQ(written({}), "{isOn=false, size=0, weight=0, colour=green, label=\"\"}");
  EXPECT_EQ(written(fullToy),
            "{isOn=true, size=255, weight=18446744073709551615, colour=darkBlue, "
            R"(label="a \"b\" \\ \n\x00\xff"})");
}

TEST(RecordText, WritesARecordWithoutFields) {
  EXPECT_EQ(Tyl::RecordWriter().text(), "{}");
}

TEST(RecordText, ReadsWhatItWrites) {
  for (const Toy& toy : {Toy{}, fullToy, Toy{true, 7, 1, Colour::red, "x"}}) {
    const Verda::String text = written(toy);
    SCOPED_TRACE(text);
    EXPECT_EQ(read(text), toy);
  }
}

TEST(RecordText, ReadsARecordWithoutFields) {
  Tyl::RecordReader record("{}");
  EXPECT_NO_THROW(record.end());
}

TEST(RecordText, ReadsAnySpacing) {
  EXPECT_EQ(read(" {\tisOn = true ,size=7,\n weight=1, colour = red, label = \"x\" } "),
            (Toy{true, 7, 1, Colour::red, "x"}));
}

TEST(RecordText, NamesTheFieldOfAFault) {
  struct Case {
    std::string_view text;
    std::string_view fault;
  };
  for (const Case& each : {
           Case{"", "a record begins with {"},
           Case{"isOn=true}", "a record begins with {"},
           Case{"{}", "isOn: the field does not come next"},
           Case{"{size=0}", "isOn: the field does not come next"},
           Case{"{isOn true}", "isOn: the field does not come next"},
           Case{"{, isOn=true}", "isOn: the field does not come next"},
           Case{"{isOn=yes}", "isOn: neither true nor false"},
           Case{"{isOn=}", "isOn: neither true nor false"},
           Case{"{isOn=True}", "isOn: neither true nor false"},
           Case{"{isOn=true}", "size: no comma before the field"},
           Case{"{isOn=true size=0}", "size: no comma before the field"},
           Case{"{isOn=true, weight=0}", "size: the field does not come next"},
           Case{"{isOn=true, size=256}", "size: not a number from 0 to 255"},
           Case{"{isOn=true, size=-1}", "size: not a number from 0 to 255"},
           Case{"{isOn=true, size=}", "size: not a number from 0 to 255"},
           Case{"{isOn=true, size=7x}", "size: not a number from 0 to 255"},
           Case{"{isOn=true, size=0x7}", "size: not a number from 0 to 255"},
           Case{"{isOn=true, size=0, weight=18446744073709551616}",
                "weight: not a number from 0 to 18446744073709551615"},
           Case{"{isOn=true, size=0, weight=0, colour=pink}",
                "colour: Colour: \"pink\" is not an enumerator"},
           Case{"{isOn=true, size=0, weight=0, colour=}",
                "colour: Colour: \"\" is not an enumerator"},
           Case{R"({isOn=true, size=0, weight=0, colour=red, label="")", "a record ends with }"},
           Case{R"({isOn=true, size=0, weight=0, colour=red, label="",})", "a record ends with }"},
           Case{R"({isOn=true, size=0, weight=0, colour=red, label="", more=1})",
                "a record ends with }"},
           Case{R"({isOn=true, size=0, weight=0, colour=red, label=""} more)",
                "a record ends with }"},
           Case{"{isOn=true, size=0, weight=0, colour=red, label=x}",
                "label: no text between quotation marks"},
           Case{R"({isOn=true, size=0, weight=0, colour=red, label="x\"})",
                "label: no text between quotation marks"},
           Case{R"({isOn=true, size=0, weight=0, colour=red, label="\q"})",
                "label: an escape that means nothing"},
           Case{R"({isOn=true, size=0, weight=0, colour=red, label="\x0"})",
                "label: an escape that means nothing"},
           Case{R"({isOn=true, size=0, weight=0, colour=red, label="\x-1"})",
                "label: an escape that means nothing"},
       }) {
    SCOPED_TRACE(each.text);
    EXPECT_EQ(thrownText<Verda::RangeError>([&each] { read(each.text); }), each.fault);
  }
}

TEST(RecordText, LeavesTheFieldOfAFaultAlone) {
  bool isOn = true;
  EXPECT_THROW(Tyl::RecordReader("{isOn=no}").field("isOn", isOn), Verda::RangeError);
  EXPECT_TRUE(isOn);
  U16 size = 7;
  EXPECT_THROW(Tyl::RecordReader("{size=65536}").field("size", size), Verda::RangeError);
  EXPECT_EQ(size, 7);
  auto colour = Colour::red;
  EXPECT_THROW(Tyl::RecordReader("{colour=pink}").field("colour", colour), Verda::RangeError);
  EXPECT_EQ(colour, Colour::red);
}

}  // namespace
