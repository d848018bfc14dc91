#include "tool/making/Change.h"

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/TestDictionary.h"
#include "tool/process/ToolError.h"

namespace RadiusPacketTool {
namespace {

const AttributeNames& names() {
  static const AttributeNames shipped(TestSupport::shippedDictionary());
  return shipped;
}

TEST(Change, EachOptionIsOneInTheOrderSetAddRemove) {
  const std::vector<Change> changes = changesOf({.set = {"User-Name = \"bob\""},
                                                 .add = {"Class=0x00", "Message-Authenticator"},
                                                 .remove = {"Attr-240"}},
                                                names());
  ASSERT_EQ(changes.size(), 4U);
  EXPECT_EQ(changes[0].kind, Change::Kind::set);
  EXPECT_EQ(changes[0].origin, "--set number 1: User-Name");
  EXPECT_EQ(changes[0].value, "\"bob\"");
  EXPECT_EQ(changes[1].kind, Change::Kind::add);
  EXPECT_EQ(changes[1].origin, "--add number 1: Class");
  EXPECT_EQ(changes[1].value, "0x00");
  EXPECT_EQ(changes[2].origin, "--add number 2: Message-Authenticator");
  EXPECT_EQ(changes[2].value, std::nullopt);
  EXPECT_EQ(changes[3].kind, Change::Kind::remove);
  EXPECT_EQ(changes[3].origin, "--remove number 1: Attr-240");
  EXPECT_TRUE(changes[3].attribute.isRaw);
}

struct BadRow {
  const char* name;
  ChangeTexts texts;
  ExitCode exitCode;
  std::string_view fault;
};

const std::array badRows{
    BadRow{"empty",
           {.set = {""}, .add = {}, .remove = {}},
           ExitCode::usage,
           "--set number 1: the argument is not NAME=VALUE"},
    BadRow{"no name",
           {.set = {}, .add = {"Class=0x", "=1"}, .remove = {}},
           ExitCode::usage,
           "--add number 2: the argument is not NAME=VALUE"},
    BadRow{"removal of nothing",
           {.set = {}, .add = {}, .remove = {"Class", ""}},
           ExitCode::usage,
           "--remove number 2: the argument is not NAME"},
    BadRow{"removal of two words",
           {.set = {}, .add = {}, .remove = {"Class State"}},
           ExitCode::usage,
           "--remove number 1: the argument is not NAME"},
    BadRow{"an unknown name",
           {.set = {"Nobody=1"}, .add = {}, .remove = {}},
           ExitCode::badData,
           "--set number 1: the dictionary has no attribute of that name"},
    BadRow{"removal of a value",
           {.set = {}, .add = {}, .remove = {"Class=0x"}},
           ExitCode::usage,
           "--remove number 1: Class: what is removed is a NAME, without a tag or a value"},
    BadRow{"removal of a tag",
           {.set = {}, .add = {}, .remove = {"Tunnel-Type:1"}},
           ExitCode::usage,
           "--remove number 1: Tunnel-Type: what is removed is a NAME, without a tag or a value"},
    BadRow{"removal of what is always kept",
           {.set = {}, .add = {}, .remove = {"Message-Authenticator"}},
           ExitCode::usage,
           "--remove number 1: Message-Authenticator: it is always kept, and computed anew"},
    BadRow{"set twice",
           {.set = {"Class=0x", "Attr-25=0x"}, .add = {}, .remove = {}},
           ExitCode::usage,
           "--set number 2: Attr-25: the attribute is set twice"},
    BadRow{"set and removed",
           {.set = {"Class=0x"}, .add = {}, .remove = {"Class"}},
           ExitCode::usage,
           "--remove number 1: Class: the attribute is set as well"},
};

TEST(Change, WhatMakesNoSenseIsRefused) {
  for (const BadRow& row : badRows) {
    SCOPED_TRACE(row.name);
    try {
      changesOf(row.texts, names());
      ADD_FAILURE() << "was read";
    } catch (const ToolError& fault) {
      EXPECT_EQ(fault.what(), row.fault);
      EXPECT_EQ(fault.exitCode(), row.exitCode);
    }
  }
}

TEST(Change, RemovingWhatIsAddedAndRemovingTwiceMakeSense) {
  EXPECT_EQ(
      changesOf({.set = {}, .add = {"Class=0x"}, .remove = {"Class", "Class"}}, names()).size(),
      3U);
}

}  // namespace
}  // namespace RadiusPacketTool
