#include "linux/applications/NativeWindows.h"
#include "tests/linux/applications/WaylandFixture.h"

#include <gtest/gtest.h>
#include <vector>

namespace vorli::linuxhost {
namespace {

constexpr std::uint32_t firstWindow = 0x80000000;

struct NativeWindowsTest : WaylandFixture {
  void follow() {
    windows.emplace(scheduler, socket(), [this] { ++changes; });
    settle();
  }

  std::optional<NativeWindows> windows;
  int changes = 0;
};

TEST_F(NativeWindowsTest, foreignToplevelsAreDescribedWithoutTheirProcesses) {
  start(Protocol::foreignToplevels);
  compositor->open({.appID = "mousepad", .pid = 12});
  compositor->open({.appID = "foot", .isActive = true});
  compositor->open({.appID = "org.example.Viewer", .isMinimised = true});
  follow();
  EXPECT_TRUE(windows->canSeeWindows());
  const std::vector<NativeWindow> expected{
      {.id = firstWindow, .appID = "mousepad"},
      {.id = firstWindow + 1, .appID = "foot", .isActive = true},
      {.id = firstWindow + 2, .appID = "org.example.Viewer", .isMinimised = true}};
  EXPECT_EQ(windows->windows(), expected);
}

TEST_F(NativeWindowsTest, plasmaAlsoSaysWhoseTheyAreAndWhichAreFurniture) {
  start(Protocol::plasma);
  compositor->open({.appID = "org.kde.kate", .pid = 70, .isActive = true});
  compositor->open({.appID = "plasmashell", .pid = 71, .isOnTaskBar = false});
  follow();
  EXPECT_TRUE(windows->canSeeWindows());
  const std::vector<NativeWindow> expected{
      {.id = firstWindow, .pid = 70, .appID = "org.kde.kate", .isActive = true},
      {.id = firstWindow + 1, .pid = 71, .appID = "plasmashell", .isNormal = false}};
  EXPECT_EQ(windows->windows(), expected);
  EXPECT_FALSE(windows->isShowingDesktop());
  compositor->showDesktop();
  settle();
  EXPECT_TRUE(windows->isShowingDesktop());
}

TEST_F(NativeWindowsTest, nothingCountsAsSeenBeforeAllWindowsAreDescribed) {
  start(Protocol::plasma);
  compositor->open({.appID = "kate", .pid = 70});
  windows.emplace(scheduler, socket(), [this] { ++changes; });
  EXPECT_FALSE(windows->canSeeWindows());
  talk();
  scheduler.advance(0.25);
  EXPECT_FALSE(windows->canSeeWindows());  // the compositor's objects are known, its windows are not
  EXPECT_EQ(changes, 0);
  settle();
  EXPECT_TRUE(windows->canSeeWindows());
  EXPECT_EQ(changes, 1);
}

TEST_F(NativeWindowsTest, aCompositorThatDescribesNoWindowsLeavesThemUnseen) {
  start(Protocol::none);
  follow();
  EXPECT_FALSE(windows->canSeeWindows());
  EXPECT_EQ(changes, 0);
}

TEST_F(NativeWindowsTest, windowsThatOpenCloseAndTakeTheFocusAreFollowed) {
  for (const auto protocol : {Protocol::foreignToplevels, Protocol::plasma}) {
    start(protocol);
    auto& editor = compositor->open({.appID = "editor", .pid = 5, .isActive = true});
    follow();
    auto& viewer = compositor->open({.appID = "viewer", .pid = 6});
    settle();
    ASSERT_EQ(windows->windows().size(), 2U);
    editor.isActive = false;
    viewer.isActive = true;
    compositor->update(editor);
    compositor->update(viewer);
    settle();
    EXPECT_FALSE(windows->windows()[0].isActive);
    EXPECT_TRUE(windows->windows()[1].isActive);
    compositor->close(editor);
    settle();
    ASSERT_EQ(windows->windows().size(), 1U);
    EXPECT_EQ(windows->windows()[0].appID, "viewer");
    EXPECT_TRUE(editor.objects.empty());  // the object of a closed window is released
    windows.reset();
    compositor.reset();
  }
}

TEST_F(NativeWindowsTest, theCompositorIsReadFourTimesASecondAtMost) {
  start(Protocol::foreignToplevels);
  auto& window = compositor->open({.appID = "editor"});
  follow();
  changes = 0;
  scheduler.advance(0.25);
  window.isActive = true;
  compositor->update(window);
  talk();
  EXPECT_EQ(changes, 1);  // an event after a pause is read at once
  window.isActive = false;
  compositor->update(window);
  talk();
  scheduler.advance(0.24);
  EXPECT_EQ(changes, 1);
  scheduler.advance(0.01);
  EXPECT_EQ(changes, 2);
  EXPECT_EQ(scheduler.pendingTimers(), 0U);  // nothing wakes the program until the compositor speaks
}

TEST_F(NativeWindowsTest, aChangedTitleIsNotReported) {
  start(Protocol::plasma);
  auto& window = compositor->open({.appID = "terminal", .pid = 5});
  follow();
  changes = 0;
  for (int i = 0; i < 100; ++i) compositor->setTitle(window, "frame " + std::to_string(i));
  settle();
  EXPECT_EQ(changes, 0);
}

TEST_F(NativeWindowsTest, onlyTheGivenWindowIsAskedToClose) {
  for (const auto protocol : {Protocol::foreignToplevels, Protocol::plasma}) {
    start(protocol);
    compositor->open({.appID = "one", .pid = 5});
    compositor->open({.appID = "two", .pid = 5});
    follow();
    windows->requestClose(windows->windows()[1].id);
    windows->requestClose(firstWindow + 99);
    settle();
    EXPECT_EQ(compositor->closeRequests, std::vector<std::string>{"two"});
    EXPECT_EQ(windows->windows().size(), 2U);  // it may ask the user first
    windows.reset();
    compositor.reset();
  }
}

TEST_F(NativeWindowsTest, aLostCompositorIsFoundAgainWithWindowsOfNewIdentifiers) {
  start(Protocol::foreignToplevels);
  compositor->open({.appID = "editor"});
  follow();
  compositor.reset();
  QCoreApplication::processEvents();
  scheduler.advance(0.25);
  EXPECT_FALSE(windows->canSeeWindows());
  EXPECT_TRUE(windows->windows().empty());
  EXPECT_EQ(changes, 2);
  start(Protocol::foreignToplevels);
  compositor->open({.appID = "editor"});
  scheduler.advance(1.0);
  settle();
  EXPECT_TRUE(windows->canSeeWindows());
  ASSERT_EQ(windows->windows().size(), 1U);
  EXPECT_EQ(windows->windows()[0].id, firstWindow + 1);
}

TEST_F(NativeWindowsTest, aCompositorThatStaysAwayIsTriedSevenTimesInTwoMinutes) {
  windows.emplace(scheduler, socket(), [this] { ++changes; });
  int tries = 0;
  for (double pause = 1.0; scheduler.pendingTimers() > 0 && tries < 20; pause *= 2.0, ++tries) {
    EXPECT_EQ(scheduler.earliestDeadline(), scheduler.now() + pause);
    scheduler.advance(pause);
  }
  EXPECT_EQ(tries, 7);
  EXPECT_EQ(scheduler.now(), 1127.0);
}

TEST_F(NativeWindowsTest, aCompositorThatStopsDescribingLeavesThemUnseen) {
  start(Protocol::foreignToplevels);
  compositor->open({.appID = "editor"});
  follow();
  compositor->finish();
  settle();
  EXPECT_FALSE(windows->canSeeWindows());
  EXPECT_TRUE(windows->windows().empty());
}

}  // namespace
}  // namespace vorli::linuxhost
