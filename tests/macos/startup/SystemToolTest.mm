#include "macos/startup/ApplicationIcons.h"
#include "macos/startup/InstalledApplications.h"
#include "macos/startup/LaunchControl.h"
#include "macos/startup/ProcessUsage.h"
#include "macos/startup/SystemTool.h"
#include "tests/macos/runtime/AppKit.h"
#include "tests/macos/runtime/Dispatch.h"
#include "tests/macos/runtime/Foundation.h"
#include "tests/macos/runtime/Machine.h"
#include "tests/macos/runtime/Pictures.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <string>
#include <unistd.h>
#include <vector>

namespace vorli::machost {
namespace {

TEST(SystemToolTest, theOutputIsReturnedWhateverTheStatus) {
  EXPECT_EQ(runTool("/bin/sh", {"-c", "echo out; echo err >&2; exit 3"}), "out\n");
}

TEST(SystemToolTest, theLocaleIsPlainAndTheRestOfTheEnvironmentIsKept) {
  setenv("LC_ALL", "de_DE.UTF-8", 1);
  setenv("VORLI_KEPT", "yes", 1);
  EXPECT_EQ(runTool("/bin/sh", {"-c", "echo $LC_ALL $VORLI_KEPT"}), "C yes\n");
  unsetenv("LC_ALL");
  unsetenv("VORLI_KEPT");
}

TEST(SystemToolTest, moreOutputThanAPipeHoldsDoesNotStopTheTool) {
  EXPECT_EQ(runTool("/bin/sh", {"-c", "head -c 300000 /dev/zero | tr '\\0' x"}), std::string(300000, 'x'));
}

TEST(SystemToolTest, aToolThatIsMissingOrDoesNotEndByItselfHasNoOutput) {
  EXPECT_FALSE(runTool("/nowhere/tool", {}));
  EXPECT_FALSE(runTool("/bin/sh", {"-c", "echo out; kill -9 $$"}));
  macfake::letWaitsRunOut();
  EXPECT_FALSE(runTool("/bin/sleep", {"600"}));
  macfake::joinThreads();
}

TEST(ProcessUsageTest, theSystemsToolListsAllProcessesWithoutAHeading) {
  macfake::machine().toolsStandingFor["/bin/ps"] = "/bin/true";
  ProcessUsage().processes();
  EXPECT_EQ(macfake::machine().startedTools, std::vector<std::string>{"/bin/ps -axo pid=,pcpu=,rss="});
}

TEST(ProcessUsageTest, thisProgramIsInTheList) {
  const auto uses = ProcessUsage().processes();
  ASSERT_TRUE(uses);
  const auto own =
      std::ranges::find_if(*uses, [](const auto& use) { return use.processIdentifier == getpid(); });
  ASSERT_NE(own, uses->end());
  EXPECT_GT(own->residentKibibytes, 1000);
  EXPECT_TRUE(ProcessUsage().services().empty());
}

TEST(LaunchControlTest, anAgentIsLoadedAndUnloadedByThePathOfItsFile) {
  macfake::machine().toolsStandingFor["/bin/launchctl"] = "/bin/false";  // its status does not matter
  LaunchControl control;
  control.load("/Users/ada/Library/LaunchAgents/a b.plist");
  control.unload("/Users/ada/Library/LaunchAgents/a b.plist");
  control.reload();
  EXPECT_EQ(macfake::machine().startedTools,
            (std::vector<std::string>{"/bin/launchctl load /Users/ada/Library/LaunchAgents/a b.plist",
                                      "/bin/launchctl unload /Users/ada/Library/LaunchAgents/a b.plist"}));
}

TEST(LaunchControlTest, aMissingToolIsHarmless) {
  LaunchControl control;
  control.load("/Users/ada/Library/LaunchAgents/a.plist");
  control.unload("/Users/ada/Library/LaunchAgents/a.plist");
  control.reload();
}

TEST(InstalledApplicationsTest, anApplicationIsFoundByItsIdentifier) {
  macfake::desktop().applicationURLs[@"org.example.Mail"] = [NSURL fileURLWithPath:@"/Applications/Mail.app"];
  InstalledApplications applications;
  applications.lookAgain();
  EXPECT_EQ(applications.urlForApplication("org.example.Mail"), "/Applications/Mail.app");
  EXPECT_FALSE(applications.urlForApplication("org.example.Notes"));
  EXPECT_FALSE(applications.urlForProgram("/usr/bin/less"));
}

TEST(InstalledApplicationsTest, aBundleHasTheNamesThatItDeclares) {
  [NSBundle installAt:@"/Applications/Mail.app"
                 info:@{
                   @"CFBundleIdentifier" : @"org.example.Mail",
                   @"CFBundleDisplayName" : @"Mail",
                   @"CFBundleName" : @7
                 }];
  InstalledApplications applications;
  const auto bundle = applications.bundle("/Applications/Mail.app");
  ASSERT_TRUE(bundle);
  EXPECT_EQ(bundle->bundleIdentifier, "org.example.Mail");
  EXPECT_EQ(bundle->bundleDisplayName, "Mail");
  EXPECT_FALSE(bundle->bundleName);
  EXPECT_FALSE(applications.bundle("/Applications/Notes.app"));
}

TEST(ApplicationIconsTest, theIconOfAFileIsAnImageOfTheWantedSize) {
  macfake::machine().displayNames["/Applications/Mail.app"] = "Mail";
  ApplicationIcons icons;
  EXPECT_EQ(icons.image("/Applications/Mail.app", 64), "type 4, 64 x 64");
  EXPECT_FALSE(icons.image("/Applications/Notes.app", 64));
  macfake::pictures().canEncode = false;
  EXPECT_FALSE(icons.image("/Applications/Mail.app", 64));
  macfake::pictures().canRender = false;
  EXPECT_FALSE(icons.image("/Applications/Mail.app", 64));
}

}  // namespace
}  // namespace vorli::machost
