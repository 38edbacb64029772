#include "tests/fakes/ManualScheduler.h"
#include "tests/fakes/MotionPreference.h"
#include "tests/macos/runtime/Windows.h"
#include "ui/macos/MacSurroundings.h"
#include "ui/macos/PopoverWindow.h"

#include <QCursor>
#include <gtest/gtest.h>
#include <optional>
#include <set>
#include <vector>

namespace vorli::ui {
namespace {

using macfake::windows;

struct PopoverWindowTest : testing::Test {
  PopoverWindowTest() { QCursor::place = {500, 500}; }

  void pressEverywhere() {
    for (const auto& each : std::vector(windows().monitors)) each.handler([[NSEvent alloc] init]);
  }
  NSWindow* native() { return popover.shownWidget().window.native; }

  fakes::ManualScheduler scheduler;
  fakes::MotionPreference motion;
  MacSurroundings surroundings{WindowMotion{scheduler, motion}};
  std::optional<ClickAnchor> item = ClickAnchor{{110, 10}, {100, 0, 20, 20}};
  PopoverWindow popover{scheduler, [this] { return item; }, surroundings};
  int presses = 0;
};

TEST_F(PopoverWindowTest, theWindowIsAboveOthersOnAllSpacesAndHasOneShadow) {
  popover.show();
  EXPECT_EQ(native().level, 101);
  EXPECT_EQ(native().collectionBehavior, 1U + 8U + 256U);
  EXPECT_FALSE(native().hasShadow);
  EXPECT_EQ(popover.shownWidget().attributes, std::set<Qt::WidgetAttribute>{Qt::WA_MacAlwaysShowToolWindow});
}

TEST_F(PopoverWindowTest, theKeyboardComesWithTheProgramsActivation) {
  const int before = NSApp.activations;
  popover.makeKey();
  EXPECT_EQ(NSApp.activations, before);
  popover.show();
  popover.makeKey();
  EXPECT_EQ(NSApp.activations, before + 1);
  EXPECT_EQ(native().timesOrderedFront, 1);
  EXPECT_EQ(popover.shownWidget().window.raises, 1);
  EXPECT_EQ(popover.shownWidget().window.activations, 1);
}

TEST_F(PopoverWindowTest, pressesOutsideAreReportedUntilTheTokenEnds) {
  std::optional<Subscription> token = popover.monitorPressesOutside([this] { ++presses; });
  ASSERT_EQ(windows().monitors.size(), 1U);
  EXPECT_EQ(windows().monitors[0].mask, 10U);
  pressEverywhere();
  EXPECT_EQ(presses, 1);
  token.reset();
  EXPECT_TRUE(windows().monitors.empty());
}

TEST_F(PopoverWindowTest, aMonitorOfPressesMayEndInItsOwnCall) {
  std::optional<Subscription> token;
  token = popover.monitorPressesOutside([&] {
    token.reset();
    ++presses;
  });
  pressEverywhere();
  EXPECT_EQ(presses, 1);
}

TEST_F(PopoverWindowTest, aSystemThatAllowsNoMonitorReportsNothing) {
  windows().allowsMonitors = false;
  const Subscription token = popover.monitorPressesOutside([this] { ++presses; });
  pressEverywhere();
  EXPECT_EQ(presses, 0);
}

TEST_F(PopoverWindowTest, leavingForAnotherWindowCloses) {
  popover.leave();
  EXPECT_EQ(popover.closings, 0);
  popover.show();
  popover.leave();
  EXPECT_EQ(popover.closings, 1);
}

// The click itself closes it when the button is released.
TEST_F(PopoverWindowTest, aPressOnTheItemDoesNotCloseAndAnAppThatComesForwardDoes) {
  popover.show();
  QCursor::place = {105, 5};
  windows().pressedButtons = 1;
  popover.leave();
  EXPECT_EQ(popover.closings, 0);
  windows().pressedButtons = 0;
  popover.leave();
  EXPECT_EQ(popover.closings, 1);
  windows().pressedButtons = 1;
  QCursor::place = {500, 500};
  popover.leave();
  EXPECT_EQ(popover.closings, 2);
}

TEST_F(PopoverWindowTest, thePlaceFollowsTheItem) {
  EXPECT_FALSE(popover.panel());
  item = ClickAnchor{{210, 10}, {200, 0, 20, 20}};
  EXPECT_EQ(popover.placeAfterChange()->icon, QRect(200, 0, 20, 20));
}

TEST_F(PopoverWindowTest, surroundingsFollowTheSystem) {
  EXPECT_EQ(surroundings.appearance(), Appearance::light);
  windows().appearance = "NSAppearanceNameDarkAqua";
  EXPECT_EQ(surroundings.appearance(), Appearance::dark);
  EXPECT_EQ(surroundings.compositing(), Compositing::present);
  EXPECT_EQ(surroundings.closeButtonSide(), CloseButtonSide::left);
  EXPECT_EQ(&surroundings.movement()->preference, &motion);
}

}  // namespace
}  // namespace vorli::ui
