#pragma once

#include "Tyl/Enumeration.h"
#include "Verda/Types.h"

/// Enumerations to test the type framework with: a class with its numbers out of order, and a
/// holder with a signed number.
namespace TylTest {

#define TYL_TEST_COLOUR_LIST(X) \
  X(red, 2)                     \
  X(green, 0)                   \
  X(darkBlue, 255)

TYL_ENUMERATION(Colour, ::Verda::U8, TYL_TEST_COLOUR_LIST)

#define TYL_TEST_WEATHER_LIST(X) \
  X(FROST, -10)                  \
  X(MILD, 15)                    \
  X(HOT_DAY, 300)

TYL_ENUMERATION_HOLDER(Weather, ::Verda::S32, ::Verda::S32, TYL_TEST_WEATHER_LIST)

}  // namespace TylTest
