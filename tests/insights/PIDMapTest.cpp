#include "insights/PIDMap.h"

#include <limits>

namespace vorli {
namespace {

TEST(PIDMapTest, anEmptyTableHoldsNothing) {
  PIDMap<int> map;
  EXPECT_EQ(map.find(1), nullptr);
  map.reset(0);
  EXPECT_EQ(map.find(1), nullptr);
}

TEST(PIDMapTest, holdsAsManyAsPromisedWhateverTheKeys) {
  for (const std::int32_t step : {1, 2, 1024, 65536}) {
    PIDMap<std::int32_t> map;
    map.reset(1000);
    for (std::int32_t i = 1; i <= 1000; ++i) map.set(i * step, i);
    for (std::int32_t i = 1; i <= 1000; ++i) {
      ASSERT_NE(map.find(i * step), nullptr) << i * step;
      ASSERT_EQ(*map.find(i * step), i);
    }
    EXPECT_EQ(map.find(1001 * step), nullptr);
  }
}

TEST(PIDMapTest, theLastValueOfAKeyCountsAndTakesNoMoreRoom) {
  PIDMap<int> map;
  map.reset(1);
  for (int i = 0; i < 10; ++i) map.set(std::numeric_limits<std::int32_t>::max(), i);
  EXPECT_EQ(*map.find(std::numeric_limits<std::int32_t>::max()), 9);
}

TEST(PIDMapTest, aResetForgetsEverything) {
  PIDMap<int> map;
  map.reset(100);
  map.set(7, 1);
  map.reset(10);
  EXPECT_EQ(map.find(7), nullptr);
  map.reset(1000);
  EXPECT_EQ(map.find(7), nullptr);
}

TEST(PIDMapDeathTest, moreEntriesThanPromisedStopTheProgram) {
  PIDMap<int> map;
  map.reset(2);
  map.set(1, 0);
  map.set(2, 0);
  EXPECT_DEATH(map.set(3, 0), "broken invariant");
}

}  // namespace
}  // namespace vorli
