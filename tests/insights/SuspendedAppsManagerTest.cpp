#include "insights/SuspendedAppsManager.h"
#include "tests/fakes/Publish.h"
#include "tests/fakes/Workspace.h"
#include "tests/helper/HelperFixture.h"

namespace vorli {
namespace {

using ports::ApplicationEvent;
using PIDSet = std::set<std::int32_t>;
using Requests = std::vector<std::string>;

struct SuspendedAppsManagerTest : HelperFixture {
  void suspend(std::int32_t pid) {
    auto pids = apps->suspendedPIDs.get();
    pids.insert(pid);
    fakes::publish(apps->suspendedPIDs, pids);
    auto info = apps->suspendedInfo.get();
    info[pid] = {"org.example.app", "App", Date{5.0}};
    fakes::publish(apps->suspendedInfo, info);
  }

  void tell(ApplicationEvent event, std::int32_t pid) {
    workspace.tell(event, {.processIdentifier = pid});
    scheduler.runReady();
  }

  PIDSet recordedInfo() const {
    PIDSet pids;
    for (const auto& [pid, info] : apps->suspendedInfo.get()) pids.insert(pid);
    return pids;
  }

  fakes::Workspace workspace;
  std::unique_ptr<SuspendedAppsManager> apps =
      std::make_unique<SuspendedAppsManager>(scheduler, *manager, workspace);
};

TEST_F(SuspendedAppsManagerTest, startsWithNothingRecorded) {
  EXPECT_TRUE(apps->suspendedPIDs->empty());
  EXPECT_TRUE(apps->suspendedInfo->empty());
  EXPECT_TRUE(transport.requests.empty());
}

TEST_F(SuspendedAppsManagerTest, activatingAnApplicationThatIsNotRecordedMakesNoCall) {
  suspend(42);
  tell(ApplicationEvent::activated, 43);
  tell(ApplicationEvent::launched, 42);
  scheduler.advance(100.0);
  EXPECT_TRUE(transport.requests.empty());
  EXPECT_EQ(apps->suspendedPIDs.get(), PIDSet{42});
}

TEST_F(SuspendedAppsManagerTest, anApplicationIsResumedAsSoonAsTheUserActivatesIt) {
  suspend(42);
  suspend(43);
  tell(ApplicationEvent::activated, 42);
  EXPECT_EQ(transport.requests, Requests{"killPID 42 19"});
  scheduler.advance(1.0);
  EXPECT_EQ(apps->suspendedPIDs.get(), PIDSet{43});
  EXPECT_EQ(recordedInfo(), PIDSet{43});
  tell(ApplicationEvent::activated, 42);
  EXPECT_EQ(transport.requests.size(), 1u);
}

TEST_F(SuspendedAppsManagerTest, anApplicationThatEndsIsForgottenWithoutACall) {
  suspend(42);
  suspend(43);
  int changes = 0;
  const auto token = apps->suspendedPIDs.subscribeToChanges([&](const auto&) { ++changes; });
  tell(ApplicationEvent::terminated, 42);
  EXPECT_EQ(apps->suspendedPIDs.get(), PIDSet{43});
  EXPECT_EQ(recordedInfo(), PIDSet{43});
  tell(ApplicationEvent::terminated, 44);
  EXPECT_EQ(changes, 1);
  EXPECT_TRUE(transport.requests.empty());
}

TEST_F(SuspendedAppsManagerTest, aFailureOfTheHelperLeavesTheApplicationRecordedForTheNextActivation) {
  suspend(42);
  for (const HelperReply& failure : {HelperReply{1, "no"}, HelperReply{-1, ""}}) {
    transport.killPID.answer = failure;
    tell(ApplicationEvent::activated, 42);
    scheduler.advance(100.0);
    EXPECT_EQ(apps->suspendedPIDs.get(), PIDSet{42});
    EXPECT_EQ(recordedInfo(), PIDSet{42});
  }
  transport.killPID.answer = {0, ""};
  tell(ApplicationEvent::activated, 42);
  scheduler.advance(100.0);
  EXPECT_EQ(transport.requests.size(), 3u);
  EXPECT_TRUE(apps->suspendedPIDs->empty());
}

TEST_F(SuspendedAppsManagerTest, aHelperThatDoesNotAnswerIsAFailure) {
  suspend(42);
  transport.setConduct(Conduct::silent);
  const auto end = start(apps->resumeAll());
  scheduler.advance(600.0);
  EXPECT_FALSE(end.isRunning());
  EXPECT_EQ(apps->suspendedPIDs.get(), PIDSet{42});
}

TEST_F(SuspendedAppsManagerTest, anApplicationMayEndWhileItIsBeingResumed) {
  suspend(42);
  transport.killPID.delaySeconds = 1.0;
  tell(ApplicationEvent::activated, 42);
  tell(ApplicationEvent::terminated, 42);
  EXPECT_TRUE(apps->suspendedPIDs->empty());
  scheduler.advance(1.0);
  EXPECT_TRUE(apps->suspendedPIDs->empty());
}

TEST_F(SuspendedAppsManagerTest, resumingNothingEndsAtOnce) {
  const auto end = start(apps->resumeAll());
  EXPECT_FALSE(end.isRunning());
  EXPECT_TRUE(transport.requests.empty());
}

TEST_F(SuspendedAppsManagerTest, allAreResumedOneAfterTheOther) {
  for (const std::int32_t pid : {43, 42, 44}) suspend(pid);
  transport.killPID.delaySeconds = 1.0;
  const auto end = start(apps->resumeAll());
  EXPECT_EQ(transport.requests, Requests{"killPID 42 19"});
  scheduler.advance(1.0);
  EXPECT_EQ(transport.requests, (Requests{"killPID 42 19", "killPID 43 19"}));
  EXPECT_EQ(apps->suspendedPIDs.get(), (PIDSet{43, 44}));
  EXPECT_TRUE(end.isRunning());
  scheduler.advance(2.0);
  EXPECT_EQ(transport.requests, (Requests{"killPID 42 19", "killPID 43 19", "killPID 44 19"}));
  EXPECT_FALSE(end.isRunning());
  EXPECT_TRUE(apps->suspendedPIDs->empty());
  EXPECT_TRUE(apps->suspendedInfo->empty());
}

TEST_F(SuspendedAppsManagerTest, aFailureDoesNotStopTheRest) {
  for (const std::int32_t pid : {42, 43}) suspend(pid);
  transport.killPID.answer = {1, "no"};
  const auto end = start(apps->resumeAll());
  scheduler.advance(1.0);
  EXPECT_FALSE(end.isRunning());
  EXPECT_EQ(transport.requests, (Requests{"killPID 42 19", "killPID 43 19"}));
  EXPECT_EQ(apps->suspendedPIDs.get(), (PIDSet{42, 43}));
}

TEST_F(SuspendedAppsManagerTest, anApplicationThatEndsBeforeItsTurnIsSkipped) {
  for (const std::int32_t pid : {42, 43}) suspend(pid);
  transport.killPID.delaySeconds = 1.0;
  const auto end = start(apps->resumeAll());
  tell(ApplicationEvent::terminated, 43);
  scheduler.advance(1.0);
  EXPECT_FALSE(end.isRunning());
  EXPECT_EQ(transport.requests, Requests{"killPID 42 19"});
}

TEST_F(SuspendedAppsManagerTest, aDestroyedManagerReceivesNothing) {
  suspend(42);
  transport.killPID.delaySeconds = 1.0;
  tell(ApplicationEvent::activated, 42);
  apps.reset();
  scheduler.advance(1.0);
  EXPECT_FALSE(workspace.hasSubscribers(ApplicationEvent::activated));
  EXPECT_FALSE(workspace.hasSubscribers(ApplicationEvent::terminated));
}

}  // namespace
}  // namespace vorli
