#include "sampling/RingState.h"

namespace vorli {
namespace {

TEST(RingStateTest, isCutAtItsTwoEdges) {
  EXPECT_EQ(ringState(-1.0), RingState::healthy);
  EXPECT_EQ(ringState(0.0), RingState::healthy);
  EXPECT_EQ(ringState(0.5499), RingState::healthy);
  EXPECT_EQ(ringState(0.55), RingState::warming);
  EXPECT_EQ(ringState(0.7999), RingState::warming);
  EXPECT_EQ(ringState(0.8), RingState::critical);
  EXPECT_EQ(ringState(1.0), RingState::critical);
}

TEST(RingStateTest, isNamedInTheLog) {
  EXPECT_EQ(description(RingState::healthy), "healthy");
  EXPECT_EQ(description(RingState::warming), "warming");
  EXPECT_EQ(description(RingState::critical), "critical");
}

}  // namespace
}  // namespace vorli
