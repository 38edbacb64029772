#include "app/AppDelegate.h"
#include "app/Reactions.h"
#include "app/Services.h"
#include "tests/fakes/FakeHost.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <vector>

namespace vorli {
namespace {

struct ReactionsTest : testing::Test, fakes::FakeHost {
  ReactionsTest() {
    services.settings.gentleNudges.set(true);
    delegate.applicationDidFinishLaunching();
    scheduler.runReady();
    hotkeys.calls.clear();
  }

  // Critical pressure and heat together put the ring above the threshold of the notice.
  void strain() {
    memory.pressure.kernelLevel = 4;
    thermal.reading.systemState = 3;
    for (int tick = 0; tick < 8; ++tick) services.systemMonitor.refresh();
  }

  Services services{ports()};
  AppDelegate delegate{services};
};

TEST_F(ReactionsTest, aTickThatStrainsTheMachineNudges) {
  strain();
  EXPECT_TRUE(notices.posted.empty());  // not before the tick is whole
  scheduler.runReady();
  ASSERT_EQ(notices.posted.size(), 1u);
  EXPECT_EQ(notices.posted[0].categoryIdentifier, "VorliClearAction");
}

TEST_F(ReactionsTest, anotherHotKeyReplacesTheFirst) {
  services.settings.globalHotkeyCombo.set("cmd+shift+K");
  scheduler.runReady();
  EXPECT_EQ(hotkeys.registrations.back().modifiers, 0x300u);
  EXPECT_EQ(hotkeys.registrations.back().keyCode, 40u);
  EXPECT_TRUE(hotkeys.isRegistered);
}

TEST_F(ReactionsTest, theLoginItemFollowsEachChangeOfItsSetting) {
  services.settings.launchAtLogin.set(true);
  services.settings.launchAtLogin.set(false);
  EXPECT_TRUE(loginItem.calls.empty());
  scheduler.runReady();
  EXPECT_EQ(loginItem.calls, (std::vector<std::string>{"register", "unregister"}));
  EXPECT_FALSE(services.settings.launchAtLogin());
}

TEST_F(ReactionsTest, switchingTheNudgesOnAsksForPermissionAndARefusalSwitchesThemOff) {
  auto& setting = services.settings.gentleNudges;
  notices.authorizationOptions.clear();
  setting.set(false);
  scheduler.runReady();
  EXPECT_TRUE(notices.authorizationOptions.empty());
  setting.set(true);
  scheduler.runReady();
  EXPECT_EQ(notices.authorizationOptions, std::vector<std::uint32_t>{6});
  EXPECT_TRUE(setting());

  notices.authorization = {.granted = false, .error = std::nullopt};
  setting.set(false);
  setting.set(true);
  scheduler.runReady();
  EXPECT_FALSE(setting());
  EXPECT_EQ(notices.authorizationOptions, (std::vector<std::uint32_t>{6, 6}));
}

TEST_F(ReactionsTest, nothingReactsAfterTheEnd) {
  delegate.applicationWillTerminate();
  services.settings.launchAtLogin.set(true);
  services.settings.globalHotkeyCombo.set("cmd+shift+K");
  services.settings.edgeGlow.set(true);
  strain();
  scheduler.runReady();
  EXPECT_TRUE(loginItem.calls.empty());
  EXPECT_TRUE(hotkeys.calls.empty());
  EXPECT_FALSE(services.edgeGlow.enabled());
  EXPECT_TRUE(notices.posted.empty());
}

}  // namespace
}  // namespace vorli
