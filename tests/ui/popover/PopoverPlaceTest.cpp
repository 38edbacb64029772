#include "ui/popover/PopoverPlace.h"

#include <gtest/gtest.h>

namespace vorli::ui {
namespace {

using Edge = PopoverScene::Edge;

const ScreenPlace screen{{0, 0, 1920, 1080}, {0, 28, 1920, 1052}, 1.0};
const QRect topPanel{0, 0, 1920, 28};

std::optional<ClickAnchor> clickAt(int x, int y) {
  return ClickAnchor{{x, y}, {x - 14, y - 14, 28, 28}};
}

TEST(PopoverPlace, hangsBelowAnUpperPanelCentredAtTheIcon) {
  EXPECT_EQ(popoverPlace(clickAt(1000, 5), topPanel, {screen}), (PopoverPlace{Edge::top, 865, 34}));
}

TEST(PopoverPlace, staysFourPointsFromTheSidesOfTheScreen) {
  EXPECT_EQ(popoverPlace(clickAt(1905, 14), topPanel, {screen})->left, 1920 - 270 - 4);
  EXPECT_EQ(popoverPlace(clickAt(10, 14), topPanel, {screen})->left, 4);
}

TEST(PopoverPlace, screenThatIsTooNarrowShowsItsLeftSide) {
  const ScreenPlace narrow{{100, 0, 240, 320}, {100, 0, 240, 320}, 1.0};
  EXPECT_EQ(popoverPlace(clickAt(320, 5), std::nullopt, {narrow})->left, 104);
}

TEST(PopoverPlace, isAboveALowerPanel) {
  const QRect panel{0, 1050, 1920, 30};
  EXPECT_EQ(popoverPlace(clickAt(1000, 1065), panel, {screen}), (PopoverPlace{Edge::bottom, 865, 1044}));
}

TEST(PopoverPlace, withoutAKnownPanelItKeepsClearOfTheIcon) {
  const ScreenPlace whole{{0, 0, 1920, 1080}, {0, 0, 1920, 1080}, 1.0};
  EXPECT_EQ(popoverPlace(clickAt(1000, 14), std::nullopt, {whole})->y, 28 + 6);
  EXPECT_EQ(popoverPlace(clickAt(1000, 1065), std::nullopt, {whole})->y, 1051 - 6);
  EXPECT_EQ(popoverPlace(clickAt(1000, 5), std::nullopt, {screen})->y,
            28 + 6);  // the desktop knows the panel
}

TEST(PopoverPlace, panelOfTheSecondScreenCountsOnlyThere) {
  const ScreenPlace left{{0, 0, 960, 1080}, {0, 0, 960, 1080}, 1.0};
  const ScreenPlace right{{960, 0, 960, 1080}, {960, 0, 960, 1080}, 1.0};
  const QRect panel{960, 0, 960, 28};
  EXPECT_EQ(popoverPlace(clickAt(970, 14), panel, {left, right}), (PopoverPlace{Edge::top, 964, 34}));
}

TEST(PopoverPlace, isBesideAVerticalPanel) {
  const QRect left{0, 0, 40, 1080}, right{1880, 0, 40, 1080};
  EXPECT_EQ(popoverPlace(clickAt(20, 200), left, {screen}), (PopoverPlace{Edge::top, 46, 186}));
  EXPECT_EQ(popoverPlace(clickAt(1900, 900), right, {screen}), (PopoverPlace{Edge::bottom, 1604, 914}));
}

TEST(PopoverPlace, withoutAClickItIsInTheUpperRight) {
  EXPECT_EQ(popoverPlace(std::nullopt, std::nullopt, {screen}), (PopoverPlace{Edge::top, 1646, 34}));
  EXPECT_EQ(popoverPlace(clickAt(5000, 5), std::nullopt, {screen}), (PopoverPlace{Edge::top, 1646, 34}));
}

TEST(PopoverPlace, withoutAScreenThereIsNoPlace) {
  EXPECT_EQ(popoverPlace(clickAt(5, 5), std::nullopt, {}), std::nullopt);
}

}  // namespace
}  // namespace vorli::ui
