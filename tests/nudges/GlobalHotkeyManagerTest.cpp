#include "nudges/GlobalHotkeyManager.h"
#include "tests/fakes/CapturedLog.h"
#include "tests/fakes/GlobalHotkeys.h"
#include "tests/fakes/ManualScheduler.h"

#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <vector>

namespace vorli {
namespace {

using HotkeyState = GlobalHotkeyManager::State;
using Strings = std::vector<std::string>;

struct GlobalHotkeyManagerTest : testing::Test {
  fakes::CapturedLog log;
  fakes::ManualScheduler scheduler;
  fakes::GlobalHotkeys hotkeys;
  std::optional<GlobalHotkeyManager> manager{std::in_place, scheduler, hotkeys};
  int presses = 0;

  void set(const std::string& combo) {
    manager->registerCombo(combo, [this] { ++presses; });
  }
  void press() {
    hotkeys.press();
    scheduler.runReady();
  }
  HotkeyState state() const { return manager->state; }
};

TEST_F(GlobalHotkeyManagerTest, registersTheKeyUnderItsIdentifier) {
  set("opt+shift+C");
  EXPECT_EQ(hotkeys.registrations,
            (std::vector<fakes::GlobalHotkeys::Registration>{{8, 0xA00, {0x56524C49, 1}}}));
  EXPECT_EQ(hotkeys.calls, (Strings{"install handler", "register"}));
  EXPECT_EQ(log.messages(), Strings{"hotkey registered: opt+shift+C"});
  EXPECT_EQ(state(), HotkeyState::registered);
}

TEST_F(GlobalHotkeyManagerTest, aPressQueuesTheTriggerWithoutRunningIt) {
  set("opt+shift+C");
  hotkeys.press();
  EXPECT_EQ(presses, 0);
  scheduler.runReady();
  EXPECT_EQ(presses, 1);
}

TEST_F(GlobalHotkeyManagerTest, anotherComboReplacesTheFirst) {
  set("opt+shift+C");
  hotkeys.calls.clear();
  set("cmd+K");
  EXPECT_EQ(hotkeys.calls, (Strings{"unregister", "remove handler", "install handler", "register"}));
  EXPECT_TRUE(hotkeys.isRegistered);
  press();
  EXPECT_EQ(presses, 1);
}

TEST_F(GlobalHotkeyManagerTest, theSameComboMayBeRegisteredAgain) {
  set("opt+shift+C");
  set("opt+shift+C");
  press();
  EXPECT_EQ(presses, 1);
  EXPECT_EQ(state(), HotkeyState::registered);
}

TEST_F(GlobalHotkeyManagerTest, aComboThatCannotBeReadLeavesNoKey) {
  set("opt+shift+C");
  set("opt+↑");
  EXPECT_FALSE(hotkeys.isRegistered);
  EXPECT_EQ(log.count("hotkey parse failed for combo opt+↑"), 1);
  press();
  EXPECT_EQ(presses, 0);
  EXPECT_EQ(state(), HotkeyState::notParsed);
}

TEST_F(GlobalHotkeyManagerTest, aRefusalIsLoggedWithItsCodeAndLeavesNoKey) {
  hotkeys.status = 10;
  set("opt+shift+C");
  EXPECT_EQ(log.lines(),
            (std::vector<fakes::CapturedLog::Line>{
                {LogLevel::error, "hotkey", "RegisterEventHotKey failed (10) for opt+shift+C"}}));
  EXPECT_EQ(state(), HotkeyState::refused);
  EXPECT_EQ(hotkeys.calls, (Strings{"install handler", "register"}));
  hotkeys.status = 0;
  set("cmd+K");
  EXPECT_EQ(state(), HotkeyState::registered);
}

TEST_F(GlobalHotkeyManagerTest, aDesktopWithoutGlobalKeysIsDistinguished) {
  hotkeys.status = ports::hotkeyUnavailable;
  set("opt+shift+C");
  EXPECT_EQ(state(), HotkeyState::unavailable);
}

TEST_F(GlobalHotkeyManagerTest, aKeyThatTheKeyboardLacksIsNotReportedAsTaken) {
  hotkeys.status = ports::hotkeyNotOnKeyboard;
  set("cmd+K");
  EXPECT_EQ(log.count("RegisterEventHotKey failed (-2) for cmd+K"), 1);
  EXPECT_EQ(state(), HotkeyState::notParsed);
}

TEST_F(GlobalHotkeyManagerTest, aKeyThatTheUserDeclinesIsNotReportedAsTaken) {
  set("opt+shift+C");
  hotkeys.changeLater(ports::hotkeyDeclined);
  EXPECT_EQ(log.count("RegisterEventHotKey failed (-3) for opt+shift+C"), 1);
  EXPECT_EQ(state(), HotkeyState::declined);
}

TEST_F(GlobalHotkeyManagerTest, aKeyThatStopsWorkingIsReportedAndMayWorkAgain) {
  set("opt+shift+C");
  hotkeys.changeLater(10);
  EXPECT_EQ(log.count("RegisterEventHotKey failed (10) for opt+shift+C"), 1);
  EXPECT_EQ(state(), HotkeyState::refused);
  EXPECT_TRUE(hotkeys.isRegistered);  // the system keeps trying
  hotkeys.changeLater(0);
  EXPECT_EQ(log.count("hotkey registered: opt+shift+C"), 2);
  EXPECT_EQ(state(), HotkeyState::registered);
  press();
  EXPECT_EQ(presses, 1);
}

TEST_F(GlobalHotkeyManagerTest, unregisteringIsCompleteAndMayBeRepeated) {
  set("opt+shift+C");
  hotkeys.press();
  manager->unregister();
  scheduler.runReady();
  EXPECT_EQ(presses, 0);  // including queued events
  EXPECT_FALSE(hotkeys.isRegistered);
  EXPECT_EQ(state(), HotkeyState::none);
  const auto calls = hotkeys.calls;
  manager->unregister();
  EXPECT_EQ(hotkeys.calls, calls);
}

TEST_F(GlobalHotkeyManagerTest, aTriggerMayRegisterAnotherKey) {
  manager->registerCombo("opt+shift+C", [this] { set("cmd+K"); });
  press();
  EXPECT_EQ(hotkeys.registrations.back().keyCode, 40u);
  press();
  EXPECT_EQ(presses, 1);
}

TEST_F(GlobalHotkeyManagerTest, aPressThatOutlivesTheManagerDoesNothing) {
  set("opt+shift+C");
  hotkeys.press();
  manager.reset();
  scheduler.runReady();
  EXPECT_EQ(presses, 0);
  EXPECT_FALSE(hotkeys.isRegistered);
}

}  // namespace
}  // namespace vorli
