#include "macos/session/GlobalHotkeys.h"
#include "tests/fakes/ManualScheduler.h"
#include "tests/macos/runtime/Keys.h"

#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

namespace vorli::machost {
namespace {

using macfake::keys;
using Calls = std::vector<std::string>;

struct GlobalHotkeysTest : testing::Test {
  fakes::ManualScheduler scheduler;
  GlobalHotkeys hotkeys{scheduler};
  int presses = 0;
};

TEST_F(GlobalHotkeysTest, thePressOfAKeyIsHandledFromTheMainLoop) {
  const auto subscription = hotkeys.installEventHandler([this] { ++presses; });
  EXPECT_EQ(keys().calls, Calls{"install 1 1801812322 5"});
  keys().press();
  EXPECT_EQ(presses, 0);
  scheduler.runReady();
  EXPECT_EQ(presses, 1);
}

TEST_F(GlobalHotkeysTest, noPressIsHandledAfterTheSubscription) {
  auto subscription = hotkeys.installEventHandler([this] { ++presses; });
  keys().press();
  subscription.cancel();
  EXPECT_EQ(keys().calls.back(), "remove");
  scheduler.runReady();
  EXPECT_EQ(presses, 0);
}

TEST_F(GlobalHotkeysTest, aHandlerThatCannotBeInstalledIsNotRemoved) {
  keys().installStatus = -50;
  hotkeys.installEventHandler([this] { ++presses; }).cancel();
  EXPECT_EQ(keys().calls.size(), 1U);
}

TEST_F(GlobalHotkeysTest, aKeyIsRegisteredWithItsIdentifierUntilItsTokenEnds) {
  auto key = hotkeys.registerEventHotKey(35, 0x900, {.signature = 0x56524C59, .id = 1});
  ASSERT_TRUE(key);
  EXPECT_EQ(keys().calls, Calls{"register 35 2304 1448234073 1 0"});
  key->cancel();
  EXPECT_EQ(keys().calls.back(), "unregister");
}

TEST_F(GlobalHotkeysTest, aKeyThatAnotherProgramHasIsTheSystemsError) {
  keys().registerStatus = -9878;
  const auto key = hotkeys.registerEventHotKey(35, 0x900, {.signature = 1, .id = 1});
  ASSERT_FALSE(key);
  EXPECT_EQ(key.error(), -9878);
  EXPECT_EQ(keys().calls.size(), 1U);
}

TEST_F(GlobalHotkeysTest, noChangeIsEverReported) {
  hotkeys.setStatusHandler([](std::int32_t) { ADD_FAILURE(); });
  scheduler.runReady();
}

}  // namespace
}  // namespace vorli::machost
