#include "macos/applications/Workspace.h"
#include "tests/fakes/ManualScheduler.h"
#include "tests/macos/runtime/AppKit.h"
#include "tests/macos/runtime/Dispatch.h"
#include "tests/macos/runtime/Foundation.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace vorli::machost {
namespace {

using macfake::desktop;
using macfake::launch;
using ports::ApplicationEvent;
using ports::QuitAnswer;
using OwnerPIDs = std::vector<std::int32_t>;

struct WorkspaceTest : testing::Test {
  std::vector<std::int32_t> running() {
    std::vector<std::int32_t> pids;
    for (const auto& each : workspace.runningApplications()) pids.push_back(each.processIdentifier);
    return pids;
  }
  void post(NSNotificationName name, NSRunningApplication* application) {
    [NSWorkspace.sharedWorkspace.notificationCenter
            post:name
        userInfo:application ? @{NSWorkspaceApplicationKey : application} : @{}];
  }
  NSDictionary* windowOf(int pid) {
    return @{(__bridge NSString*)kCGWindowOwnerPID : @(pid)};
  }

  fakes::ManualScheduler scheduler;
  Workspace workspace{scheduler};
};

TEST_F(WorkspaceTest, aRecordHoldsWhatTheSystemKnows) {
  NSRunningApplication* const mail = launch(80, @"Mail");
  mail.bundleIdentifier = @"org.example.Mail";
  mail.bundleURL = [NSURL fileURLWithPath:@"/Applications/Mail.app"];
  mail.activationPolicy = NSApplicationActivationPolicyAccessory;
  mail.launchDate = [NSDate dateWithTimeIntervalSince1970:1'700'000'000.5];
  const auto& records = workspace.runningApplications();
  ASSERT_EQ(records.size(), 1U);
  EXPECT_EQ(records[0], (ports::RunningApplication{.processIdentifier = 80,
                                                   .localizedName = "Mail",
                                                   .bundleIdentifier = "org.example.Mail",
                                                   .bundleURL = "/Applications/Mail.app",
                                                   .activationPolicy = ports::ActivationPolicy::accessory,
                                                   .launchDate = Date{1'700'000'000.5},
                                                   .icon = {"/Applications/Mail.app"}}));
}

TEST_F(WorkspaceTest, unknownFieldsAreEmpty) {
  launch(80, nil).activationPolicy = NSApplicationActivationPolicyProhibited;
  const auto& records = workspace.runningApplications();
  ASSERT_EQ(records.size(), 1U);
  EXPECT_EQ(records[0], (ports::RunningApplication{.processIdentifier = 80,
                                                   .activationPolicy = ports::ActivationPolicy::prohibited}));
}

TEST_F(WorkspaceTest, theListDoesNotChangeBeforeTheMainLoopRunsAgain) {
  launch(80, @"Mail");
  EXPECT_EQ(running(), OwnerPIDs{80});
  launch(81, @"Notes");
  EXPECT_EQ(running(), OwnerPIDs{80});
  scheduler.runReady();
  EXPECT_EQ(running(), (OwnerPIDs{80, 81}));
}

TEST_F(WorkspaceTest, theFrontmostApplicationMayBeMissing) {
  EXPECT_FALSE(workspace.frontmostApplication());
  desktop().frontmost = launch(80, @"Mail");
  EXPECT_EQ(workspace.frontmostApplication()->processIdentifier, 80);
  EXPECT_TRUE(workspace.seesActivations());
  EXPECT_TRUE(workspace.seesEveryWindow());
}

TEST_F(WorkspaceTest, ownersOfVisibleWindowsExcludeTheDesktop) {
  desktop().windows = @[ windowOf(80), windowOf(81), windowOf(80) ];
  EXPECT_EQ(workspace.onScreenWindowOwnerPIDs(), (OwnerPIDs{80, 81, 80}));
  EXPECT_EQ(desktop().windowOptions, (std::vector<CGWindowListOption>{17}));
}

TEST_F(WorkspaceTest, aWindowWithoutAnOwnerIsLeftOut) {
  desktop().windows =
      @[ windowOf(80), @{}, @{(__bridge NSString*)kCGWindowOwnerPID : @"eighty"}, windowOf(81) ];
  EXPECT_EQ(workspace.onScreenWindowOwnerPIDs(), (OwnerPIDs{80, 81}));
}

TEST_F(WorkspaceTest, aListThatCannotBeUnderstoodIsEmpty) {
  desktop().windows = nil;
  EXPECT_EQ(workspace.onScreenWindowOwnerPIDs(), OwnerPIDs{});
  desktop().windows = @"no list";
  EXPECT_EQ(workspace.onScreenWindowOwnerPIDs(), OwnerPIDs{});
  desktop().windows = @[ windowOf(80), @"no window" ];
  EXPECT_EQ(workspace.onScreenWindowOwnerPIDs(), OwnerPIDs{});
}

TEST_F(WorkspaceTest, anApplicationIsAskedToQuitOnce) {
  NSRunningApplication* const mail = launch(80, @"Mail");
  EXPECT_EQ(workspace.answerToTerminate(80), QuitAnswer::asked);
  EXPECT_EQ(mail.quitRequests, 0);
  EXPECT_EQ(workspace.terminate(80), QuitAnswer::asked);
  EXPECT_EQ(mail.quitRequests, 1);
}

TEST_F(WorkspaceTest, anApplicationThatDoesNotTakeTheRequestCannotBeAsked) {
  launch(80, @"Mail").refusesToQuit = YES;
  EXPECT_EQ(workspace.terminate(80), QuitAnswer::cannotBeAsked);
}

TEST_F(WorkspaceTest, anApplicationThatHasEndedIsGone) {
  NSRunningApplication* const mail = launch(80, @"Mail");
  mail.terminated = YES;
  EXPECT_EQ(workspace.terminate(80), QuitAnswer::gone);
  EXPECT_EQ(workspace.answerToTerminate(80), QuitAnswer::gone);
  EXPECT_EQ(workspace.terminate(81), QuitAnswer::gone);
  EXPECT_EQ(workspace.answerToTerminate(81), QuitAnswer::gone);
  EXPECT_EQ(mail.quitRequests, 0);
}

TEST_F(WorkspaceTest, anInstalledApplicationIsFoundByItsBundle) {
  [NSBundle installAt:@"/Applications/Mail.app" info:@{@"CFBundleIdentifier" : @"org.example.Mail"}];
  const auto application = workspace.applicationAt("/Applications/Mail.app");
  ASSERT_TRUE(application);
  EXPECT_EQ(application->bundleIdentifier, "org.example.Mail");
  EXPECT_EQ(application->displayName, "/Applications/Mail.app");
  EXPECT_FALSE(workspace.applicationAt("/Applications/Notes.app"));
  EXPECT_FALSE(workspace.applicationHelpedBy(80));
}

TEST_F(WorkspaceTest, eventsArriveFromTheMainLoopUntilTheSubscriptionEnds) {
  const std::pair<ApplicationEvent, NSNotificationName> events[] = {
      {ApplicationEvent::activated, NSWorkspaceDidActivateApplicationNotification},
      {ApplicationEvent::launched, NSWorkspaceDidLaunchApplicationNotification},
      {ApplicationEvent::terminated, NSWorkspaceDidTerminateApplicationNotification}};
  NSRunningApplication* const mail = launch(80, @"Mail");
  for (const auto& [event, name] : events) {
    OwnerPIDs seen;
    auto subscription = workspace.subscribe(
        event, [&seen](const ports::RunningApplication& each) { seen.push_back(each.processIdentifier); });
    post(name, mail);
    EXPECT_EQ(seen, OwnerPIDs{});
    macfake::runMainQueue();
    EXPECT_EQ(seen, OwnerPIDs{80});
    post(name, mail);
    subscription.cancel();
    macfake::runMainQueue();
    EXPECT_EQ(seen, OwnerPIDs{80});
    EXPECT_EQ(NSWorkspace.sharedWorkspace.notificationCenter.observerCount, 0U);
  }
}

TEST_F(WorkspaceTest, anApplicationThatHasEndedIsReportedWithItsListedRecord) {
  NSRunningApplication* const mail = launch(80, @"Mail");
  EXPECT_EQ(running(), OwnerPIDs{80});
  std::vector<std::string> names;
  const auto subscription = workspace.subscribe(
      ApplicationEvent::terminated,
      [&names](const ports::RunningApplication& each) { names.emplace_back(each.localizedName->view()); });
  mail.localizedName = nil;
  post(NSWorkspaceDidTerminateApplicationNotification, mail);
  macfake::runMainQueue();
  EXPECT_EQ(names, std::vector<std::string>{"Mail"});
}

TEST_F(WorkspaceTest, anEventWithoutAnApplicationIsIgnored) {
  int events = 0;
  const auto subscription = workspace.subscribe(ApplicationEvent::launched,
                                                [&events](const ports::RunningApplication&) { ++events; });
  post(NSWorkspaceDidLaunchApplicationNotification, nil);
  macfake::runMainQueue();
  EXPECT_EQ(events, 0);
}

TEST_F(WorkspaceTest, aSwitchOfTheSpaceIsReported) {
  int switches = 0;
  const auto subscription = workspace.subscribeToSpaceChanges([&switches] { ++switches; });
  post(NSWorkspaceActiveSpaceDidChangeNotification, nil);
  macfake::runMainQueue();
  EXPECT_EQ(switches, 1);
}

}  // namespace
}  // namespace vorli::machost
