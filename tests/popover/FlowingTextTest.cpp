#include "popover/FlowingText.h"

namespace vorli {
namespace {

using Size = FlowingText::Size;
using Position = FlowingText::Position;

struct FlowingTextTest : testing::Test {
  FlowingText::Arrangement arrange(std::vector<Size> items, double width) {
    return layout.arrange(items, width);
  }
  FlowingText layout;
};

TEST_F(FlowingTextTest, hasNoSpacingAndTwoPointsBetweenLines) {
  EXPECT_EQ(layout.spacing, 0.0);
  EXPECT_EQ(layout.lineSpacing, 2.0);
}

TEST_F(FlowingTextTest, anEmptyFlowTakesNoRoom) {
  const auto arrangement = arrange({}, 100.0);
  EXPECT_TRUE(arrangement.positions.empty());
  EXPECT_EQ(arrangement.size, (Size{0.0, 0.0}));
}

TEST_F(FlowingTextTest, itemsArePlacedSideBySideUpToTheProposedWidth) {
  const auto arrangement = arrange({{40.0, 14.0}, {60.0, 13.0}}, 100.0);
  EXPECT_EQ(arrangement.positions, (std::vector<Position>{{0.0, 0.0}, {40.0, 0.0}}));
  EXPECT_EQ(arrangement.size, (Size{100.0, 14.0}));
}

TEST_F(FlowingTextTest, anItemThatWouldPassTheWidthBeginsANewLineBelowTheTallest) {
  const auto arrangement = arrange({{40.0, 14.0}, {20.0, 18.0}, {40.5, 13.0}, {10.0, 16.0}}, 100.0);
  EXPECT_EQ(arrangement.positions,
            (std::vector<Position>{{0.0, 0.0}, {40.0, 0.0}, {0.0, 20.0}, {40.5, 20.0}}));
  EXPECT_EQ(arrangement.size, (Size{60.0, 36.0}));
}

TEST_F(FlowingTextTest, theFirstItemOfALineStaysHoweverWide) {
  const auto arrangement = arrange({{140.0, 14.0}, {150.0, 10.0}, {100.0, 12.0}}, 100.0);
  EXPECT_EQ(arrangement.positions, (std::vector<Position>{{0.0, 0.0}, {0.0, 16.0}, {0.0, 28.0}}));
  EXPECT_EQ(arrangement.size, (Size{150.0, 40.0}));
}

TEST_F(FlowingTextTest, anEmptyFirstItemIsStillTheFirst) {
  const auto arrangement = arrange({{0.0, 14.0}, {140.0, 14.0}}, 100.0);
  EXPECT_EQ(arrangement.positions, (std::vector<Position>{{0.0, 0.0}, {0.0, 16.0}}));
}

TEST_F(FlowingTextTest, spacingCountsBetweenItemsOfALineOnly) {
  layout.spacing = 5.0;
  layout.lineSpacing = 3.0;
  const auto arrangement = arrange({{45.0, 10.0}, {50.0, 10.0}, {50.0, 10.0}}, 100.0);
  EXPECT_EQ(arrangement.positions, (std::vector<Position>{{0.0, 0.0}, {50.0, 0.0}, {0.0, 13.0}}));
  EXPECT_EQ(arrangement.size, (Size{100.0, 23.0}));
}

}  // namespace
}  // namespace vorli
