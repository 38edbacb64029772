#include "tests/fakes/ManualScheduler.h"
#include "tests/macos/runtime/Dispatch.h"
#include "tests/macos/runtime/Foundation.h"
#include "tests/macos/runtime/Pictures.h"
#include "tests/macos/runtime/Windows.h"
#include "ui/macos/GlowOverlay.h"

#include <cmath>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

namespace vorli::ui {
namespace {

using macfake::windows;
using ports::ScreenFrame;

struct GlowOverlayTest : testing::Test {
  NSWindow* platform() { return windows().all.firstObject; }
  void addScreens() {
    macfake::addScreen({{0.0, 0.0}, {1000.0, 800.0}});
    macfake::addScreen({{1000.0, 100.0}, {600.0, 400.0}});
  }
  static ports::GlowOverlay::Frames constant(double opacity) {
    return [opacity](double) {
      return ports::GlowPicture{.colour = {0.5, 0.25, 1.0, 1.0}, .opacity = opacity};
    };
  }

  fakes::ManualScheduler scheduler;
  std::unique_ptr<GlowOverlay> overlay = std::make_unique<GlowOverlay>(scheduler);
};

TEST_F(GlowOverlayTest, withoutAScreenThereIsNothingToBuild) {
  EXPECT_FALSE(overlay->mainScreen());
  EXPECT_FALSE(overlay->build(120.0));
  EXPECT_EQ(windows().all.count, 0U);
}

TEST_F(GlowOverlayTest, theWindowLetsEverythingThroughAndIsOnAllSpaces) {
  addScreens();
  ASSERT_TRUE(overlay->build(120.0));
  EXPECT_EQ(overlay->frame(), (ScreenFrame{0.0, 0.0, 1000.0, 800.0}));
  NSWindow* const window = platform();
  EXPECT_EQ(window.style, NSWindowStyleMaskBorderless);
  EXPECT_FALSE(window.opaque);
  EXPECT_FALSE(window.hasShadow);
  EXPECT_TRUE(window.ignoresMouseEvents);
  EXPECT_FALSE(window.releasedWhenClosed);
  EXPECT_EQ(window.level, 3);
  EXPECT_EQ(window.collectionBehavior, 1U + 16U + 256U);
  EXPECT_FALSE(window.isVisible);
}

TEST_F(GlowOverlayTest, aFrameOnAnotherScreenIsTurnedOver) {
  addScreens();
  ASSERT_TRUE(overlay->build(120.0));
  overlay->setFrame({1000.0, 300.0, 600.0, 400.0});
  EXPECT_EQ(platform().frame.origin.x, 1000.0);
  EXPECT_EQ(platform().frame.origin.y, 100.0);
  EXPECT_EQ(platform().frame.size.height, 400.0);
}

TEST_F(GlowOverlayTest, fourBandsLieAlongTheEdges) {
  addScreens();
  ASSERT_TRUE(overlay->build(120.0));
  overlay->animate(constant(0.5), 0.0);
  macfake::drawView(platform().contentView);
  EXPECT_EQ(macfake::pictures().drawn,
            (std::vector<std::string>{
                "gradient 1 to 0 in 0 0 1000 120 at 270", "gradient 1 to 0 in 0 0 1000 120 at 90",
                "gradient 1 to 0 in 0 0 120 800 at 0", "gradient 1 to 0 in 0 0 120 800 at 180"}));
  const NSArray<NSView*>* const bands = platform().contentView.subviews;
  EXPECT_EQ(bands[0].frame.origin.y, 680.0);
  EXPECT_EQ(bands[1].frame.origin.y, 0.0);
  EXPECT_EQ(bands[3].frame.origin.x, 880.0);
  for (NSView* band in bands) EXPECT_NEAR(band.alphaValue, 0.5, 0.003);
}

TEST_F(GlowOverlayTest, aLightThatRestsCostsNothingAndOneThatIsOutIsOffTheScreen) {
  addScreens();
  ASSERT_TRUE(overlay->build(120.0));
  overlay->animate(
      [](double time) { return ports::GlowPicture{.colour = {}, .opacity = time < 1001.0 ? 0.5 : 0.0}; },
      1001.0);
  EXPECT_TRUE(platform().isVisible);
  scheduler.advance(0.9);
  EXPECT_TRUE(platform().isVisible);
  EXPECT_EQ(platform().timesOrderedFront, 1);
  scheduler.advance(0.5);
  EXPECT_FALSE(platform().isVisible);
  EXPECT_EQ(scheduler.pendingTimers(), 0U);
}

TEST_F(GlowOverlayTest, removingTakesTheWindowAndItsTimerAway) {
  addScreens();
  ASSERT_TRUE(overlay->build(120.0));
  overlay->animate(constant(0.5), INFINITY);
  EXPECT_EQ(scheduler.pendingTimers(), 1U);
  NSWindow* const window = platform();
  overlay->remove();
  EXPECT_FALSE(window.isVisible);
  EXPECT_EQ(scheduler.pendingTimers(), 0U);
}

TEST_F(GlowOverlayTest, changesOfTheScreensAreReported) {
  int changes = 0;
  {
    const auto subscription = overlay->subscribeToScreens([&changes] { ++changes; });
    [NSNotificationCenter.defaultCenter post:NSApplicationDidChangeScreenParametersNotification userInfo:@{}];
    macfake::runMainQueue();
  }
  EXPECT_EQ(changes, 1);
  EXPECT_EQ(NSNotificationCenter.defaultCenter.observerCount, 0U);
}

}  // namespace
}  // namespace vorli::ui
