#include "macos/session/Announcements.h"
#include "macos/session/ApplicationBundle.h"
#include "macos/session/FileViewer.h"
#include "macos/session/Haptics.h"
#include "macos/session/LinkOpener.h"
#include "macos/session/LoginItem.h"
#include "macos/session/MotionPreference.h"
#include "macos/session/StartupSettings.h"
#include "macos/session/SystemDescription.h"
#include "macos/session/SystemLog.h"
#include "tests/macos/runtime/AppKit.h"
#include "tests/macos/runtime/Dispatch.h"
#include "tests/macos/runtime/Foundation.h"
#include "tests/macos/runtime/Kernel.h"
#include "tests/macos/runtime/Log.h"
#include "tests/macos/runtime/Machine.h"
#include "tests/macos/runtime/Services.h"
#include "tests/macos/runtime/Windows.h"

#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

namespace vorli::machost {
namespace {

using macfake::services;
using SessionLines = std::vector<std::string>;

TEST(LoginItemTest, theStatusIsTheSystemsOwnNumber) {
  EXPECT_EQ(LoginItem().status(), 0);
  services().status = SMAppServiceStatusRequiresApproval;
  EXPECT_EQ(LoginItem().status(), 2);
}

TEST(LoginItemTest, theProgramItselfIsRegisteredAndUnregistered) {
  LoginItem item;
  EXPECT_TRUE(item.registerItem());
  services().status = SMAppServiceStatusEnabled;
  EXPECT_TRUE(item.unregisterItem());
  EXPECT_EQ(services().calls, (SessionLines{"register main app", "unregister main app"}));
}

TEST(LoginItemTest, anUnregisteredItemNeedsNoRemoval) {
  services().refuses = true;
  EXPECT_TRUE(LoginItem().unregisterItem());
  EXPECT_EQ(services().calls, SessionLines{});
}

TEST(LoginItemTest, aRefusalHasTheSystemsText) {
  services().refuses = true;
  services().status = SMAppServiceStatusEnabled;
  LoginItem item;
  EXPECT_EQ(item.registerItem(), std::unexpected(std::string("Operation not permitted")));
  EXPECT_EQ(item.unregisterItem(), std::unexpected(std::string("Operation not permitted")));
}

TEST(StartupSettingsTest, theSystemsPageIsOpened) {
  StartupSettings().open();
  EXPECT_EQ(services().calls, SessionLines{"open settings"});
}

TEST(AnnouncementsTest, aTextIsAnnouncedForTheWholeProgramWithMediumPriority) {
  Announcements().post("Polish done");
  EXPECT_EQ(macfake::windows().announcements,
            SessionLines{"application: announcement requested, Polish done, 50"});
}

TEST(HapticsTest, oneTapIsGivenAtOnce) {
  Haptics().performFeedbackPattern(ports::FeedbackPattern::generic, ports::PerformanceTime::now);
  EXPECT_EQ(macfake::windows().haptics, SessionLines{"0 1"});
}

TEST(FileViewerTest, aFileIsShownInItsFolder) {
  FileViewer().reveal("/Users/ada/report.txt");
  EXPECT_EQ(macfake::desktop().revealedFiles, SessionLines{"/Users/ada/report.txt"});
}

TEST(LinkOpenerTest, aLinkIsOpenedOrTheFailureIsReported) {
  LinkOpener opener;
  EXPECT_TRUE(opener.openURL("https://example.org/"));
  EXPECT_EQ(macfake::desktop().openedLinks, SessionLines{"https://example.org/"});
  macfake::desktop().canOpenLinks = false;
  EXPECT_FALSE(opener.openURL("https://example.org/"));
  EXPECT_FALSE(opener.openURL(""));
  EXPECT_EQ(macfake::desktop().openedLinks.size(), 2U);
}

TEST(MotionPreferenceTest, onlyAChangeOfTheSettingIsReported) {
  MotionPreference preference;
  int changes = 0;
  auto subscription = preference.subscribe([&changes] { ++changes; });
  const auto post = [] {
    [NSWorkspace.sharedWorkspace.notificationCenter
            post:NSWorkspaceAccessibilityDisplayOptionsDidChangeNotification
        userInfo:@{}];
    macfake::runMainQueue();
  };
  post();
  EXPECT_EQ(changes, 0);
  macfake::desktop().reducesMotion = true;
  EXPECT_TRUE(preference.isReduced());
  post();
  post();
  EXPECT_EQ(changes, 1);
  macfake::desktop().reducesMotion = false;
  post();
  EXPECT_EQ(changes, 2);
  subscription.cancel();
  macfake::desktop().reducesMotion = true;
  post();
  EXPECT_EQ(changes, 2);
}

TEST(SystemDescriptionTest, theReleaseHasThreeNumbersAndNoName) {
  const auto version = SystemDescription().systemVersion();
  EXPECT_EQ(version.name, "");
  EXPECT_EQ(version.release, "14.5.0");
}

TEST(SystemDescriptionTest, theModelIsTheKernelsText) {
  macfake::kernel().values["hw.model"] = std::string("MacBookPro18,3\0", 15);
  EXPECT_EQ(SystemDescription().hardwareModel(), "MacBookPro18,3");
  macfake::kernel().values["hw.model"] = "Mac14,7";  // without its NUL
  EXPECT_EQ(SystemDescription().hardwareModel(), "Mac14,7");
}

TEST(SystemDescriptionTest, aModelThatIsMissingOrEmptyIsUnknown) {
  EXPECT_FALSE(SystemDescription().hardwareModel());
  macfake::kernel().values["hw.model"] = "";
  EXPECT_FALSE(SystemDescription().hardwareModel());
  macfake::kernel().values["hw.model"] = std::string(1, '\0');
  EXPECT_FALSE(SystemDescription().hardwareModel());
}

TEST(ApplicationBundleTest, pathsAndFactsOfTheRunningBundle) {
  macfake::machine().mainBundle = [NSBundle installAt:@"/Applications/Vorli.app"
                                                 info:@{
                                                   @"CFBundleVersion" : @"123",
                                                   @"Number" : @7
                                                 }];
  const ApplicationBundle bundle;
  EXPECT_EQ(bundle.infoString("CFBundleVersion"), "123");
  EXPECT_FALSE(bundle.infoString("Number"));
  EXPECT_FALSE(bundle.infoString("Nothing"));
  EXPECT_EQ(bundle.bundlePath(), "/Applications/Vorli.app");
  EXPECT_EQ(bundle.homeDirectory(), "/Users/ada");
}

TEST(SystemLogTest, everyLevelHasItsTypeAndTheLineIsPublic) {
  SystemLog log;
  const std::pair<LogLevel, const char*> levels[] = {{LogLevel::debug, "2"},
                                                     {LogLevel::info, "1"},
                                                     {LogLevel::standard, "0"},
                                                     {LogLevel::error, "16"},
                                                     {LogLevel::fault, "17"}};
  for (const auto& [level, type] : levels) {
    log.write(
        {.level = level, .subsystem = "com.kv.vorli", .category = "polish", .message = "100 % <private>"});
    EXPECT_EQ(macfake::log().lines.back(), std::string("com.kv.vorli/polish ") + type + ": 100 % <private>");
  }
}

}  // namespace
}  // namespace vorli::machost
