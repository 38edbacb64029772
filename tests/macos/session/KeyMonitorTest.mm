#include "macos/session/KeyMonitor.h"
#include "tests/macos/runtime/Foundation.h"
#include "tests/macos/runtime/Windows.h"

#include <gtest/gtest.h>
#include <optional>
#include <vector>

namespace vorli::machost {
namespace {

using macfake::windows;

struct KeyMonitorTest : testing::Test {
  void listen() {
    token = monitor.addLocalKeyDownMonitor([this](const ports::KeyDown& key) { keys.push_back(key); });
  }
  /// Presses a key; returns the event that the monitors let through, or nil.
  static NSEvent* press(unsigned short code, NSEventModifierFlags flags, NSString* characters) {
    NSEvent* event = [[NSEvent alloc] init];
    event.keyCode = code;
    event.modifierFlags = flags;
    event.charactersIgnoringModifiers = characters;
    for (const auto& each : std::vector(windows().localMonitors))
      if (event) event = each.handler(event);
    return event;
  }

  KeyMonitor monitor;
  std::vector<ports::KeyDown> keys;
  std::optional<Subscription> token;
};

TEST_F(KeyMonitorTest, aKeyReachesTheMonitorAndNobodyElse) {
  listen();
  ASSERT_EQ(windows().localMonitors.size(), 1U);
  EXPECT_EQ(windows().localMonitors[0].mask, 1024U);
  EXPECT_FALSE(press(8, 0x180108, @"c"));
  ASSERT_EQ(keys.size(), 1U);
  EXPECT_EQ(keys[0].keyCode, 8);
  EXPECT_EQ(keys[0].modifierFlags, 0x180108U);
  EXPECT_EQ(keys[0].charactersIgnoringModifiers, "c");
  EXPECT_TRUE(keys[0].beginsWithLetterOrNumber);
}

TEST_F(KeyMonitorTest, lettersAndNumbersOfEveryScriptCount) {
  listen();
  for (const char* text : {"7", "\xC3\xA4", "\xD0\xB6"}) press(0, 0, macfake::string(text));
  for (const auto& key : keys) EXPECT_TRUE(key.beginsWithLetterOrNumber) << key.charactersIgnoringModifiers;
  keys.clear();
  for (const char* text : {"-", "\x1B", "\xEF\x9C\x84", ""}) press(0, 0, macfake::string(text));
  press(0, 0, nil);
  ASSERT_EQ(keys.size(), 5U);
  for (const auto& key : keys) EXPECT_FALSE(key.beginsWithLetterOrNumber) << key.charactersIgnoringModifiers;
}

TEST_F(KeyMonitorTest, theMonitorEndsWithItsToken) {
  listen();
  token.reset();
  EXPECT_TRUE(windows().localMonitors.empty());
  EXPECT_TRUE(press(8, 0, @"c"));
  EXPECT_TRUE(keys.empty());
}

TEST_F(KeyMonitorTest, aMonitorMayEndInItsOwnCall) {
  token = monitor.addLocalKeyDownMonitor([this](const ports::KeyDown& key) {
    token.reset();
    keys.push_back(key);
  });
  EXPECT_FALSE(press(53, 0, @"\x1B"));
  EXPECT_EQ(keys.size(), 1U);
  EXPECT_TRUE(windows().localMonitors.empty());
}

TEST_F(KeyMonitorTest, aSystemThatRefusesAMonitorIsHarmless) {
  windows().allowsMonitors = false;
  listen();
  EXPECT_TRUE(press(8, 0, @"c"));
  EXPECT_TRUE(keys.empty());
}

}  // namespace
}  // namespace vorli::machost
