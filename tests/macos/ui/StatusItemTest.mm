#include "tests/fakes/ManualScheduler.h"
#include "tests/macos/runtime/Dispatch.h"
#include "tests/macos/runtime/Foundation.h"
#include "tests/macos/runtime/Pictures.h"
#include "tests/macos/runtime/Windows.h"
#include "ui/macos/StatusItem.h"

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

namespace vorli::ui {
namespace {

using macfake::windows;
using ports::StatusClick;
using Lines = std::vector<std::string>;

struct StatusItemTest : testing::Test {
  NSStatusItem* platform() { return windows().statusItems.firstObject; }
  std::vector<ports::MenuRow> rows() {
    using Kind = ports::MenuRow::Kind;
    return {
        {.kind = Kind::action, .title = "Polish Now", .keyEquivalent = "p", .action = [this] { ++polishes; }},
        {.kind = Kind::separator, .title = {}, .keyEquivalent = {}, .action = {}},
        {.kind = Kind::action, .title = "Quit", .keyEquivalent = "q", .action = {}}};
  }

  fakes::ManualScheduler scheduler;
  std::unique_ptr<StatusItem> item = std::make_unique<StatusItem>(scheduler);
  int polishes = 0;
};

TEST_F(StatusItemTest, theItemIsInTheMenuBarUntilItsEnd) {
  EXPECT_FALSE(item->hasButton());
  EXPECT_TRUE(item->create());
  EXPECT_TRUE(item->hasButton());
  EXPECT_EQ(platform().length, -1.0);
  EXPECT_TRUE(item->create());
  EXPECT_EQ(windows().statusItems.count, 1U);
  item.reset();
  EXPECT_EQ(windows().statusItems.count, 0U);
}

TEST_F(StatusItemTest, withoutAButtonThereIsNothingToDrawOn) {
  windows().hasStatusButtons = false;
  EXPECT_FALSE(item->create());
  EXPECT_FALSE(item->hasButton());
  item->setPicture({});
  item->setToolTip("text");
  item->showMenu(rows());
  EXPECT_FALSE(item->anchor());
}

TEST_F(StatusItemTest, bothButtonsAndTheControlKeyAreReported) {
  Lines clicks;
  item->setClickHandler([&clicks](const StatusClick& click) {
    clicks.push_back(std::string(click.button == StatusClick::Button::right ? "right" : "left") +
                     (click.control == StatusClick::Control::held ? " with control" : ""));
  });
  item->create();
  NSStatusBarButton* const button = platform().button;
  constexpr auto leftUp = static_cast<NSEventType>(2), leftDown = static_cast<NSEventType>(1);
  [button click:leftDown modifiers:0];
  EXPECT_EQ(clicks, Lines{});
  [button click:leftUp modifiers:0];
  [button click:NSEventTypeRightMouseUp modifiers:0];
  [button click:leftUp modifiers:NSEventModifierFlagControl];
  EXPECT_EQ(clicks, (Lines{"left", "right", "left with control"}));
}

TEST_F(StatusItemTest, aClickWithoutAHandlerOrAnEventIsNoFault) {
  item->create();
  [platform().button performClick:nil];
  StatusClick seen{.button = StatusClick::Button::right, .control = StatusClick::Control::held};
  item->setClickHandler([&seen](const StatusClick& click) { seen = click; });
  [platform().button performClick:nil];
  EXPECT_EQ(seen.button, StatusClick::Button::left);
  EXPECT_EQ(seen.control, StatusClick::Control::up);
}

TEST_F(StatusItemTest, theMenuHasItsRowsAndTheItemKeepsNone) {
  __block Lines shown;
  windows().openMenu = ^(NSMenu* menu) {
    for (NSMenuItem* row in menu.items)
      shown.push_back(
          row.isSeparator ? "-" : std::string(row.title.UTF8String) + " " + row.keyEquivalent.UTF8String);
  };
  item->create();
  item->showMenu(rows());
  EXPECT_EQ(shown, (Lines{"Polish Now p", "-", "Quit q"}));
  EXPECT_EQ(platform().menu, nil);
}

TEST_F(StatusItemTest, aChosenRowActsFromTheMainLoop) {
  windows().openMenu = ^(NSMenu* menu) {
    [menu.items[0] choose];
    [menu.items[2] choose];  // a row without an action
  };
  item->create();
  item->showMenu(rows());
  EXPECT_EQ(polishes, 0);
  scheduler.runReady();
  EXPECT_EQ(polishes, 1);
}

TEST_F(StatusItemTest, textsReachTheButton) {
  item->create();
  EXPECT_STREQ(platform().button.accessibilityRole.UTF8String, "AXButton");
  item->setToolTip("tip");
  item->setAccessibilityLabel("label");
  item->setAccessibilityValue("value");
  EXPECT_STREQ(platform().button.toolTip.UTF8String, "tip");
  EXPECT_STREQ(platform().button.accessibilityLabel.UTF8String, "label");
  EXPECT_STREQ(static_cast<NSString*>(platform().button.accessibilityValue).UTF8String, "value");
}

TEST_F(StatusItemTest, thePictureIsDrawnStrokeByStroke) {
  item->create();
  item->setPicture({.sidePoints = 18.0,
                    .strokes = {{.fromX = 1.0,
                                 .fromY = 2.0,
                                 .toX = 3.0,
                                 .toY = 4.0,
                                 .width = 1.5,
                                 .colour = {0.25, 0.5, 0.75, 1.0}}}});
  NSImage* const image = platform().button.image;
  EXPECT_EQ(image.size.width, 18.0);
  EXPECT_TRUE(image.isFlipped);
  EXPECT_TRUE(image.drawingHandler(NSRect{}));
  EXPECT_EQ(macfake::pictures().drawn,
            (Lines{"colour 0.25 0.5 0.75 1", "from 1 2", "to 3 4", "stroke 1.5 cap 1"}));
}

TEST_F(StatusItemTest, anEqualPictureIsNotSetAgain) {
  item->create();
  item->setPicture({});
  NSImage* const first = platform().button.image;
  item->setPicture({});
  EXPECT_EQ(platform().button.image, first);
  item->setPicture({.sidePoints = 20.0, .strokes = {}});
  EXPECT_NE(platform().button.image, first);
}

TEST_F(StatusItemTest, aDarkMenuBarIsNoticed) {
  int changes = 0;
  item->setAppearanceHandler([&changes] { ++changes; });
  EXPECT_FALSE(item->hasDarkAppearance());
  windows().appearance = "NSAppearanceNameDarkAqua";
  EXPECT_TRUE(item->hasDarkAppearance());
  [NSDistributedNotificationCenter.defaultCenter post:@"AppleInterfaceThemeChangedNotification" userInfo:@{}];
  macfake::runMainQueue();
  EXPECT_EQ(changes, 1);
  item.reset();
  EXPECT_EQ(NSDistributedNotificationCenter.defaultCenter.observerCount, 0U);
}

TEST_F(StatusItemTest, thePlaceOfTheItemCountsFromTheUpperLeftCorner) {
  item->create();
  EXPECT_FALSE(item->anchor());
  macfake::addScreen({{0.0, 0.0}, {1440.0, 900.0}});
  NSWindow* const bar = [[NSWindow alloc] initWithContentRect:{
    {1000.0, 876.0}, {
      40.0, 24.0
    }
  }
                                                    styleMask:NSWindowStyleMaskBorderless
                                                      backing:NSBackingStoreBuffered
                                                        defer:NO];
  platform().button.window = bar;
  platform().button.frame = {{4.0, 2.0}, {30.0, 20.0}};
  const auto anchor = item->anchor();
  ASSERT_TRUE(anchor);
  EXPECT_EQ(anchor->icon, QRect(1004, 2, 30, 20));
  EXPECT_EQ(anchor->point, QRect(1004, 2, 30, 20).center());
}

}  // namespace
}  // namespace vorli::ui
