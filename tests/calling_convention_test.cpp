// The rules by which ARM code passes arguments, one test a rule.
#include "sim/guest/calling_convention.hpp"

#include <gtest/gtest.h>

namespace sim::guest {
namespace {

using Where = Place::Where;

Places nth(Slice slice, std::vector<Kind> kinds, std::size_t wanted,
           std::size_t variadicFrom = 99) {
  ArgumentLayout layout(slice);
  Places places;
  for (std::size_t i = 0; i <= wanted; ++i) {
    if (i == variadicFrom) layout.beginVariadic();
    places = layout.next(kinds.at(i));
  }
  return places;
}

void expectPlace(const Place& place, Where where, unsigned index, unsigned size) {
  EXPECT_EQ(place, (Place{where, index, size}));
}

TEST(Arm64Arguments, IntegersAndRealsCountTheirRegistersApart) {
  const std::vector<Kind> kinds{Kind::Object, Kind::Selector, Kind::Double, Kind::Int32};
  expectPlace(nth(Slice::arm64, kinds, 2).place[0], Where::Real, 0, 8);
  expectPlace(nth(Slice::arm64, kinds, 3).place[0], Where::Integer, 2, 4);
}

TEST(Arm64Arguments, TheNinthIntegerGoesOnTheStack) {
  const std::vector<Kind> kinds(10, Kind::Object);
  expectPlace(nth(Slice::arm64, kinds, 7).place[0], Where::Integer, 7, 8);
  expectPlace(nth(Slice::arm64, kinds, 8).place[0], Where::Stack, 0, 8);
  expectPlace(nth(Slice::arm64, kinds, 9).place[0], Where::Stack, 8, 8);
}

TEST(Arm64Arguments, StackArgumentsArePackedAtTheirNaturalSize) {
  std::vector<Kind> kinds(8, Kind::Object);
  kinds.insert(kinds.end(), {Kind::Bool, Kind::Bool, Kind::Int32, Kind::Bool, Kind::Object});
  expectPlace(nth(Slice::arm64, kinds, 8).place[0], Where::Stack, 0, 1);
  expectPlace(nth(Slice::arm64, kinds, 9).place[0], Where::Stack, 1, 1);
  expectPlace(nth(Slice::arm64, kinds, 10).place[0], Where::Stack, 4, 4);
  expectPlace(nth(Slice::arm64, kinds, 11).place[0], Where::Stack, 8, 1);
  expectPlace(nth(Slice::arm64, kinds, 12).place[0], Where::Stack, 16, 8);
}

TEST(Arm64Arguments, VariadicOnesAreAllOnTheStackInEightByteSlots) {
  const std::vector<Kind> kinds{Kind::Object, Kind::Selector, Kind::Object, Kind::Object,
                                Kind::Int32};
  expectPlace(nth(Slice::arm64, kinds, 3, 3).place[0], Where::Stack, 0, 8);
  expectPlace(nth(Slice::arm64, kinds, 4, 3).place[0], Where::Stack, 8, 8);
}

TEST(Arm64Arguments, TheStackStaysAlignedToSixteenBytes) {
  ArgumentLayout layout(Slice::arm64);
  for (int i = 0; i < 9; ++i) layout.next(Kind::Object);
  EXPECT_EQ(layout.stackSize(), 16u);
}

TEST(Armv7Arguments, FourWordsInRegistersThenTheStack) {
  const std::vector<Kind> kinds(6, Kind::Object);
  expectPlace(nth(Slice::armv7, kinds, 3).place[0], Where::Integer, 3, 4);
  expectPlace(nth(Slice::armv7, kinds, 4).place[0], Where::Stack, 0, 4);
  expectPlace(nth(Slice::armv7, kinds, 5).place[0], Where::Stack, 4, 4);
}

TEST(Armv7Arguments, ADoubleIsTwoWordsInCoreRegisters) {
  const Places places = nth(Slice::armv7, {Kind::Object, Kind::Selector, Kind::Double}, 2);
  ASSERT_EQ(places.count, 2u);
  expectPlace(places.place[0], Where::Integer, 2, 4);
  expectPlace(places.place[1], Where::Integer, 3, 4);
}

TEST(Armv7Arguments, ADoubleMayBeSplitBetweenTheLastRegisterAndTheStack) {
  const Places places = nth(Slice::armv7, {Kind::Int32, Kind::Int32, Kind::Int32, Kind::Double}, 3);
  ASSERT_EQ(places.count, 2u);
  expectPlace(places.place[0], Where::Integer, 3, 4);
  expectPlace(places.place[1], Where::Stack, 0, 4);
}

TEST(Armv7Arguments, LongsAndPointersAreOneWord) {
  EXPECT_EQ(sizeOf(Slice::armv7, Kind::Long), 4u);
  EXPECT_EQ(sizeOf(Slice::armv7, Kind::Pointer), 4u);
  EXPECT_EQ(sizeOf(Slice::arm64, Kind::Long), 8u);
  EXPECT_EQ(nth(Slice::armv7, {Kind::Long}, 0).count, 1u);
}

TEST(Armv7Arguments, SmallIntegersTakeAWholeStackWord) {
  const std::vector<Kind> kinds{Kind::Object, Kind::Object, Kind::Object,
                                Kind::Object, Kind::Bool,   Kind::Bool};
  expectPlace(nth(Slice::armv7, kinds, 4).place[0], Where::Stack, 0, 4);
  expectPlace(nth(Slice::armv7, kinds, 5).place[0], Where::Stack, 4, 4);
}

}  // namespace
}  // namespace sim::guest
