#include "linux/applications/SessionWindows.h"
#include "tests/linux/applications/WaylandFixture.h"

#include <gtest/gtest.h>
#include <map>
#include <vector>

namespace vorli::linuxhost {
namespace {

using WindowPIDs = std::vector<std::int32_t>;

struct SessionWindowsTest : WaylandFixture {
  void follow(const std::string& compositorSocket) {
    windows.emplace(scheduler, compositorSocket, [this](std::string_view appID) {
      const auto found = owners.find(std::string(appID));
      return found == owners.end() ? WindowPIDs() : found->second;
    });
    windows->setHandlers(
        {.windowsChanged = [this] { ++changes; }, .activeWindowChanged = [] {}, .workspaceChanged = [] {}});
    settle();
  }
  WindowPIDs pids() const {
    WindowPIDs all;
    for (const auto& window : windows->windows()) all.push_back(window.pid);
    return all;
  }

  std::map<std::string, WindowPIDs> owners;
  std::optional<SessionWindows> windows;
  int changes = 0;
};

TEST_F(SessionWindowsTest, aWindowBelongsToTheOnlyProcessThatItMayBelongTo) {
  owners = {{"one", {10}}, {"two", {20, 21}}};
  start(Protocol::foreignToplevels);
  compositor->open({.appID = "one"});
  compositor->open({.appID = "two"});
  compositor->open({.appID = "unknown"});
  follow(socket());
  EXPECT_TRUE(windows->seesEveryWindow());
  EXPECT_EQ(pids(), (WindowPIDs{10, 0, 0}));
}

TEST_F(SessionWindowsTest, everyProcessThatMayOwnAVisibleWindowIsAmongItsOwners) {
  owners = {{"one", {10}}, {"two", {20, 21}}, {"hidden", {30}}};
  start(Protocol::foreignToplevels);
  compositor->open({.appID = "one"});
  compositor->open({.appID = "two"});
  compositor->open({.appID = "hidden", .isMinimised = true});
  follow(socket());
  const auto visible = windows->visibleWindows();
  ASSERT_TRUE(visible);
  EXPECT_EQ(visible->pids, (WindowPIDs{10, 20, 21}));
  EXPECT_FALSE(visible->hasStranger);
  auto& stranger = compositor->open({.appID = "unknown"});
  settle();
  EXPECT_TRUE(windows->visibleWindows()->hasStranger);
  stranger.isMinimised = true;
  compositor->update(stranger);
  settle();
  EXPECT_FALSE(windows->visibleWindows()->hasStranger);
}

TEST_F(SessionWindowsTest, aProcessThatBecomesKnownGetsItsWindow) {
  start(Protocol::foreignToplevels);
  compositor->open({.appID = "one"});
  follow(socket());
  changes = 0;
  owners["one"] = {10};
  windows->applicationsChanged();
  windows->applicationsChanged();
  EXPECT_EQ(pids(), WindowPIDs{0});  // in a later turn
  scheduler.runReady();
  EXPECT_EQ(pids(), WindowPIDs{10});
  EXPECT_EQ(changes, 1);
  windows->applicationsChanged();
  scheduler.runReady();
  EXPECT_EQ(changes, 1);
}

TEST_F(SessionWindowsTest, theActiveWindowIsTheCompositors) {
  start(Protocol::plasma);
  compositor->open({.appID = "one", .pid = 10});
  auto& two = compositor->open({.appID = "two", .pid = 20, .isActive = true});
  follow(socket());
  ASSERT_TRUE(windows->activeWindow());
  EXPECT_EQ(windows->activeWindow()->pid, 20);
  two.isActive = false;
  compositor->update(two);
  settle();
  EXPECT_FALSE(windows->activeWindow());
}

TEST_F(SessionWindowsTest, aShownDesktopHasNoVisibleWindowsToJudgeBy) {
  start(Protocol::plasma);
  compositor->open({.appID = "one", .pid = 10});
  compositor->open({.appID = "panel", .pid = 11, .isOnTaskBar = false});
  follow(socket());
  EXPECT_EQ(windows->visibleWindows()->pids, WindowPIDs{10});
  compositor->showDesktop();
  settle();
  EXPECT_FALSE(windows->visibleWindows());
}

TEST_F(SessionWindowsTest, withoutTheCompositorsHelpAWaylandSessionHidesWindows) {
  start(Protocol::none);
  follow(socket());
  EXPECT_FALSE(windows->seesEveryWindow());
  EXPECT_TRUE(windows->windows().empty());
}

TEST_F(SessionWindowsTest, withNoDisplayAtAllNothingIsSeen) {
  follow("");
  EXPECT_FALSE(windows->seesEveryWindow());
  EXPECT_FALSE(windows->activeWindow());
}

}  // namespace
}  // namespace vorli::linuxhost
