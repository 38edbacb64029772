#include "macos/session/DesktopShell.h"
#include "tests/macos/runtime/AppKit.h"

#include <gtest/gtest.h>

namespace vorli::machost {
namespace {

using macfake::launch;

TEST(DesktopShellTest, theDockAndTheFinderAreOnlyAskedToQuit) {
  NSRunningApplication* const dock = launch(80, @"Dock");
  dock.bundleIdentifier = @"com.apple.dock";
  NSRunningApplication* const finder = launch(81, @"Finder");
  finder.bundleIdentifier = @"com.apple.finder";
  DesktopShell shell;
  shell.restartDock();
  EXPECT_EQ(dock.quitRequests, 1);
  EXPECT_EQ(finder.quitRequests, 0);
  bool couldBeAsked = true;
  shell.restartFinder(OnceReply<std::string>([&couldBeAsked](const std::string&) { couldBeAsked = false; }));
  EXPECT_EQ(dock.quitRequests, 1);
  EXPECT_EQ(finder.quitRequests, 1);
  EXPECT_TRUE(couldBeAsked);
}

TEST(DesktopShellTest, aShellThatDoesNotRunIsLeftAlone) {
  DesktopShell shell;
  shell.restartDock();
  shell.restartFinder(OnceReply<std::string>([](const std::string&) { ADD_FAILURE(); }));
}

}  // namespace
}  // namespace vorli::machost
