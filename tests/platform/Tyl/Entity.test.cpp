#include "Tyl/Entity.h"

#include <concepts>
#include <string>
#include <utility>

#include <gtest/gtest.h>

namespace {

using Verda::Node;
using Verda::Ptr;

class Lamp : public Node {
  TYL_ENTITY(Lamp)

 public:
  Lamp() = default;
  Lamp(std::string colour, int watts) : colour_(std::move(colour)), watts_(watts) {}

  const std::string& colour() const { return colour_; }
  int watts() const { return watts_; }

 private:
  std::string colour_ = "white";
  int watts_ = 40;
};

TYL_FACTORY(lampFactory, Lamp)
TYL_ENTITY_TYPE(Lamp)

class DeskLamp : public Lamp {
  TYL_ENTITY(DeskLamp)
};

TYL_ENTITY_TYPE(DeskLamp)

TEST(Entity, IsMadeByItsStaticMaker) {
  const Ptr<Lamp> lamp = Lamp::LampIs("red", 60);
  EXPECT_EQ(lamp->colour(), "red");
  EXPECT_EQ(lamp->watts(), 60);
  EXPECT_EQ(lamp->userCount(), 1U);
}

TEST(Entity, IsMadeByItsFactory) {
  EXPECT_EQ(lampFactory()->colour(), "white");
  const Ptr<Lamp> lamp = lampFactory(std::string("red"), 60);
  EXPECT_EQ(lamp->colour(), "red");
  EXPECT_EQ(lamp->userCount(), 1U);
}

TEST(Entity, IsNewEachTime) {
  EXPECT_NE(lampFactory(), lampFactory());
}

TEST(Entity, IsMadeOnlyFromWhatItsConstructorsTake) {
  static_assert(requires { Lamp::LampIs("red", 60); });
  static_assert(!std::invocable<decltype(
                                    [](auto... arguments) requires requires {
                                      Lamp::LampIs(arguments...);
                                    } { return 0; }),
                                const char*>);
}

TEST(Entity, SaysItsTypeThroughItsBase) {
  const Ptr<const Node> lamp = lampFactory();
  EXPECT_EQ(lamp->typeData().name, "Lamp");
  const Ptr<const Lamp> deskLamp = DeskLamp::DeskLampIs();
  EXPECT_EQ(deskLamp->typeData().name, "DeskLamp");
  EXPECT_EQ(&deskLamp->typeData(), &DeskLamp::DeskLampIs()->typeData());
}

}  // namespace
