#include "Tyl/Accessors.h"

#include <string>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

#include "Tyl/Entity.h"
#include "Verda/String.h"
#include "Verda/Types.h"

#include "tests/support/ThrownText.h"

namespace {

using TestSupport::thrownText;
using Verda::Node;
using Verda::Ptr;
using Verda::String;
using Verda::U16;
using Verda::U32;

class Room : public Node {
  TYL_ENTITY(Room)

 public:
  explicit Room(U16 number = 0) : number_(number) {}

  TYL_FIXED_ATTRIBUTE(U16, number)
  TYL_ATTRIBUTE(U32, beds, 2)
};

TYL_ENTITY_TYPE(Room)

/// One attribute of each kind.
class House : public Node {
  TYL_ENTITY(House)

 public:
  TYL_ATTRIBUTE(String, name, "unnamed")
  TYL_ENTITY_ATTRIBUTE(Room, hall)
  TYL_ENTITY_COLLECTION(HashMap, U16, Room, room, HouseRoom)
  TYL_ENTITY_COLLECTION(OrderedMap, U16, Room, cellar, HouseCellar)
  TYL_VALUE_COLLECTION(HashMap, String, U32, price, HousePrice)
  TYL_VALUE_COLLECTION(OrderedMap, U16, String, label, HouseLabel)
  TYL_SET(String, guest)
  TYL_SEQUENCE(String, visit)
};

TYL_ENTITY_TYPE(House)

class Accessors : public testing::Test {
 protected:
  const Ptr<House> house = House::HouseIs();
};

TEST_F(Accessors, ReadTheFixedAttributeThatTheConstructorSet) {
  const Ptr<const Room> room = Room::RoomIs(U16{7});
  EXPECT_EQ(room->number(), 7);
  static_assert(std::is_same_v<decltype(room->number()), const U16&>);
}

TEST_F(Accessors, ReadTheInitialValueUntilOneIsSet) {
  EXPECT_EQ(house->name(), "unnamed");
  EXPECT_EQ(Room::RoomIs()->beds(), 2U);
  house->nameIs("Rose Cottage");
  EXPECT_EQ(house->name(), "Rose Cottage");
}

TEST_F(Accessors, MakeAnEntityAttributeOnDemandAndOnce) {
  EXPECT_EQ(house->hall(), nullptr);
  const Ptr<Room> hall = house->hallIs();
  ASSERT_NE(hall, nullptr);
  EXPECT_EQ(house->hallIs(), hall);
  EXPECT_EQ(house->hall(), hall);
}

TEST_F(Accessors, DetachAnEntityAttribute) {
  const Ptr<Room> hall = house->hallIs();
  EXPECT_EQ(house->hallDel(), hall);
  EXPECT_EQ(house->hall(), nullptr);
  EXPECT_EQ(house->hallDel(), nullptr);
  EXPECT_NE(house->hallIs(), hall);
}

TEST_F(Accessors, FindOrCreateTheEntityOfAKey) {
  const Ptr<Room> room = house->roomIs(7);
  ASSERT_NE(room, nullptr);
  EXPECT_EQ(room->number(), 7);
  room->bedsIs(3);
  EXPECT_EQ(house->roomIs(7), room);
  EXPECT_EQ(room->beds(), 3U);
  EXPECT_EQ(house->room().size(), 1U);
}

TEST_F(Accessors, ReadTheEntityOfAKeyOrNull) {
  const Ptr<Room> room = house->roomIs(7);
  EXPECT_EQ(house->room(7), room);
  EXPECT_EQ(house->roomGet(7), room);
  EXPECT_TRUE(house->roomHas(7));
  EXPECT_EQ(house->room(8), nullptr);
  EXPECT_EQ(house->roomGet(8), nullptr);
  EXPECT_FALSE(house->roomHas(8));
}

TEST_F(Accessors, RemoveTheEntityOfAKeyAndReturnIt) {
  const Ptr<Room> room = house->roomIs(7);
  house->roomIs(8);
  EXPECT_EQ(house->roomDel(7), room);
  EXPECT_EQ(room->userCount(), 1U);
  EXPECT_EQ(house->roomDel(7), nullptr);
  EXPECT_FALSE(house->roomHas(7));
  EXPECT_EQ(house->room().size(), 1U);
}

TEST_F(Accessors, EmptyACollectionOfEntities) {
  const Ptr<Room> room = house->roomIs(7);
  house->roomIs(8);
  house->roomDelAll();
  EXPECT_TRUE(house->room().empty());
  EXPECT_EQ(room->userCount(), 1U);
}

TEST_F(Accessors, NameTheMembersOfACollectionOfEntities) {
  const Ptr<Room> room = house->roomIs(7);
  for (const House::HouseRoom& member : house->room()) {
    EXPECT_EQ(member.key, 7);
    EXPECT_EQ(member.value, room);
  }
  static_assert(std::is_same_v<House::HouseCellar, Verda::OrderedMap<U16, Ptr<Room>>::Member>);
}

TEST_F(Accessors, IterateAnOrderedCollectionInOrder) {
  house->cellarIs(300);
  house->cellarIs(1);
  house->cellarIs(20);
  EXPECT_EQ(house->cellarDel(1)->number(), 1);
  house->cellarIs(2);
  std::vector<U16> numbers;
  for (const auto& [key, cellar] : house->cellar()) {
    EXPECT_EQ(cellar->number(), key);
    numbers.push_back(key);
  }
  EXPECT_EQ(numbers, (std::vector<U16>{2, 20, 300}));
  EXPECT_TRUE(house->cellarHas(20));
  EXPECT_EQ(house->cellarGet(20), house->cellar(20));
  house->cellarDelAll();
  EXPECT_TRUE(house->cellar().empty());
}

TEST_F(Accessors, InsertOrOverwriteAPlainValue) {
  house->priceIs("summer", 100);
  house->priceIs("winter", 50);
  house->priceIs("summer", 120);
  EXPECT_EQ(house->price().size(), 2U);
  EXPECT_EQ(house->price("summer"), 120U);
  EXPECT_EQ(house->priceGet("winter"), 50U);
  EXPECT_TRUE(house->priceHas("winter"));
}

TEST_F(Accessors, ReadNoValueForAnAbsentKey) {
  EXPECT_EQ(house->price("summer"), std::nullopt);
  EXPECT_EQ(house->priceGet("summer"), std::nullopt);
  EXPECT_FALSE(house->priceHas("summer"));
}

TEST_F(Accessors, RemovePlainValues) {
  house->priceIs("summer", 100);
  house->priceIs("winter", 50);
  EXPECT_EQ(house->priceDel("spring"), std::nullopt);
  EXPECT_EQ(house->price().size(), 2U);
  EXPECT_EQ(house->priceDel("summer"), 100U);
  EXPECT_FALSE(house->priceHas("summer"));
  house->priceDelAll();
  EXPECT_TRUE(house->price().empty());
}

TEST_F(Accessors, KeepACollectionOfValuesInTheOrderOfItsKeys) {
  house->labelIs(7, "seven");
  house->labelIs(2, "two");
  house->labelIs(7, "Seven");
  std::vector<std::pair<U16, String>> labels;
  for (const House::HouseLabel& member : house->label()) {
    labels.emplace_back(member.first, member.second);
  }
  EXPECT_EQ(labels, (std::vector<std::pair<U16, String>>{{2, "two"}, {7, "Seven"}}));
  EXPECT_EQ(house->labelDel(2), "two");
  EXPECT_EQ(house->label(2), std::nullopt);
}

TEST_F(Accessors, KeepEachMemberOfASetOnce) {
  const String& first = house->guestIs("Ada");
  EXPECT_EQ(first, "Ada");
  EXPECT_EQ(&house->guestIs("Ada"), &first);
  house->guestIs("Bob");
  EXPECT_EQ(house->guest().size(), 2U);
  EXPECT_TRUE(house->guestHas("Bob"));
  EXPECT_FALSE(house->guestHas("Eve"));
  EXPECT_EQ(house->guestDel("Eve"), std::nullopt);
  EXPECT_EQ(house->guestDel("Ada"), "Ada");
  EXPECT_EQ(house->guest().size(), 1U);
  house->guestDelAll();
  EXPECT_TRUE(house->guest().empty());
}

TEST_F(Accessors, PushAndPopASequence) {
  house->visitPush("Monday");
  house->visitPush("Tuesday");
  EXPECT_EQ(house->visit().size(), 2U);
  EXPECT_EQ(house->visit(0), "Monday");
  EXPECT_EQ(house->visit(1), "Tuesday");
  EXPECT_EQ(house->visitPop(), "Tuesday");
  EXPECT_EQ(house->visit().size(), 1U);
  house->visitPopAll();
  EXPECT_TRUE(house->visit().empty());
}

TEST_F(Accessors, ReplaceAValueOfASequence) {
  house->visitPush("Monday");
  house->visitIs(0, "Sunday");
  EXPECT_EQ(house->visit(0), "Sunday");
}

TEST_F(Accessors, RefuseToPopFromAnEmptySequence) {
  EXPECT_EQ(thrownText<Verda::EmptyVector>([this] { house->visitPop(); }), "the vector is empty");
}

TEST_F(Accessors, RefuseAnIndexThatASequenceDoesNotHave) {
  EXPECT_EQ(thrownText<Verda::VectorOutOfRange>([this] { house->visit(0); }),
            "vector index 0 is out of range, size 0");
  house->visitPush("Monday");
  EXPECT_EQ(thrownText<Verda::VectorOutOfRange>([this] { house->visit(1); }),
            "vector index 1 is out of range, size 1");
  EXPECT_EQ(thrownText<Verda::VectorOutOfRange>([this] { house->visitIs(1, "Tuesday"); }),
            "vector index 1 is out of range, size 1");
  EXPECT_EQ(house->visit(), std::vector<String>{"Monday"});
}

}  // namespace
