#include "Tyl/Enumeration.h"

#include <sstream>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

#include "Verda/Exception.h"

#include "tests/platform/Tyl/ToyEnumerations.h"
#include "tests/support/ThrownText.h"

namespace {

using namespace std::string_view_literals;
using TestSupport::thrownText;
using TylTest::Colour;
using TylTest::ColourInstance;
using TylTest::Weather;
using Verda::RangeError;

TEST(Enumeration, HasTheStorageItIsGiven) {
  static_assert(std::is_same_v<std::underlying_type_t<Colour>, Verda::U8>);
  static_assert(std::is_same_v<std::underlying_type_t<Weather::WeatherEnum>, Verda::S32>);
}

TEST(Enumeration, RegistersItsTableInDeclaredOrder) {
  const Tyl::EnumerationTable& table = enumerationTableOf(Colour::red);
  EXPECT_EQ(table.name, "Colour");
  std::vector<std::string_view> names;
  std::vector<Verda::S64> numbers;
  for (const Tyl::Enumerator& row : table.enumerators) {
    names.push_back(row.name);
    numbers.push_back(row.number);
  }
  EXPECT_EQ(names, (std::vector<std::string_view>{"red", "green", "darkBlue"}));
  EXPECT_EQ(numbers, (std::vector<Verda::S64>{2, 0, 255}));
  EXPECT_EQ(&enumerationTableOf(Weather::FROST), &Weather::enumerationTable());
  EXPECT_EQ(Weather::enumerationTable().name, "Weather");
}

TEST(Enumeration, GivesTheNameOfAnEnumerator) {
  EXPECT_EQ(stringValue(Colour::darkBlue), "darkBlue");
  EXPECT_EQ(stringValue(Weather::FROST), "FROST");
}

TEST(Enumeration, GivesTheNumberInBracketsForWhatIsNoEnumerator) {
  EXPECT_EQ(stringValue(static_cast<Colour>(14)), "Colour(14)");
  EXPECT_EQ(stringValue(static_cast<Weather::WeatherEnum>(-11)), "Weather(-11)");
}

TEST(Enumeration, PrintsWhatItsNameIs) {
  std::ostringstream out;
  out << Colour::green << ' ' << Weather::HOT_DAY << ' ' << static_cast<Colour>(14);
  EXPECT_EQ(out.str(), "green HOT_DAY Colour(14)");
}

TEST(Enumeration, GivesTheEnumeratorOfAName) {
  EXPECT_EQ(ColourInstance("darkBlue"), Colour::darkBlue);
  EXPECT_EQ(Weather::WeatherEnumInstance("FROST"), Weather::FROST);
}

TEST(Enumeration, GivesTheEnumeratorOfANumber) {
  EXPECT_EQ(ColourInstance(Verda::U32{2}), Colour::red);
  EXPECT_EQ(Weather::WeatherEnumInstance(-10), Weather::FROST);
}

TEST(Enumeration, RefusesANameThatIsNoEnumerator) {
  struct Case {
    std::string_view name;
    std::string_view fault;
  };
  for (const Case& each : {Case{"pink", "Colour: \"pink\" is not an enumerator"},
                           Case{"Red", "Colour: \"Red\" is not an enumerator"},
                           Case{"", "Colour: \"\" is not an enumerator"},
                           Case{"red ", "Colour: \"red \" is not an enumerator"},
                           Case{"red\0"sv, "Colour: \"red\\x00\" is not an enumerator"},
                           Case{"\"\\\x1B", "Colour: \"\\\"\\\\\\x1b\" is not an enumerator"}}) {
    SCOPED_TRACE(each.fault);
    EXPECT_EQ(thrownText<RangeError>([&each] { ColourInstance(each.name); }), each.fault);
  }
}

TEST(Enumeration, RefusesANumberThatIsNoEnumerator) {
  EXPECT_EQ(thrownText<RangeError>([] { ColourInstance(Verda::U32{1}); }),
            "Colour: 1 is not an enumerator");
  EXPECT_EQ(thrownText<RangeError>([] { Weather::WeatherEnumInstance(-1); }),
            "Weather: -1 is not an enumerator");
}

TEST(Enumeration, DoesNotCutANumberToItsStorage) {
  EXPECT_EQ(thrownText<RangeError>([] { ColourInstance(Verda::U32{258}); }),
            "Colour: 258 is not an enumerator");
}

TEST(Enumeration, ReadsANameFromText) {
  Tyl::TextReader text("  darkBlue, FROST");
  auto colour = Colour::red;
  sequenceToValue(text, colour);
  EXPECT_EQ(colour, Colour::darkBlue);
  EXPECT_TRUE(text.take(','));
  auto weather = Weather::MILD;
  sequenceToValue(text, weather);
  EXPECT_EQ(weather, Weather::FROST);
  EXPECT_TRUE(text.atEnd());
}

TEST(Enumeration, LeavesTheResultAloneWhenTheTextIsNoName) {
  for (const std::string_view text : {"pink", "", "=red"}) {
    SCOPED_TRACE(text);
    Tyl::TextReader reader(text);
    auto colour = Colour::green;
    EXPECT_THROW(sequenceToValue(reader, colour), RangeError);
    EXPECT_EQ(colour, Colour::green);
  }
  EXPECT_EQ(thrownText<RangeError>([] {
              Tyl::TextReader reader(" pink)");
              auto colour = Colour::green;
              sequenceToValue(reader, colour);
            }),
            "Colour: \"pink\" is not an enumerator");
}

TEST(Enumeration, FindsAnEnumeratorByNameWithoutThrowing) {
  const Tyl::Enumerator* const found = Tyl::enumeratorFind(Weather::enumerationTable(), "HOT_DAY");
  ASSERT_NE(found, nullptr);
  EXPECT_EQ(found->number, 300);
  EXPECT_EQ(Tyl::enumeratorFind(Weather::enumerationTable(), "HOT"), nullptr);
}

}  // namespace
