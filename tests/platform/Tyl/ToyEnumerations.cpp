#include "tests/platform/Tyl/ToyEnumerations.h"

namespace TylTest {

TYL_ENUMERATION_TABLE(Colour, TYL_TEST_COLOUR_LIST)
TYL_ENUMERATION_HOLDER_TABLE(Weather, ::Verda::S32, TYL_TEST_WEATHER_LIST)

}  // namespace TylTest
