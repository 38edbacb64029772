#include "helper/HelperLaunchTask.h"
#include "tests/fakes/KeyValueStore.h"
#include "tests/helper/HelperFixture.h"

namespace vorli {
namespace {

using Calls = std::vector<std::string>;

struct BuildChangeTest : testing::Test {
  fakes::ApplicationBundle bundle;
  fakes::KeyValueStore defaults;

  bool check(std::optional<std::string> current, std::optional<StoredValue> stored) {
    bundle.info.clear();
    if (current) bundle.info["CFBundleVersion"] = *current;
    defaults.setObject("vorli.lastLaunchedBuild", std::move(stored));
    defaults.writes.clear();
    const bool changed = buildChanged(bundle, defaults);
    EXPECT_EQ(defaults.writes, Calls{"vorli.lastLaunchedBuild"});
    EXPECT_EQ(defaults.values.at("vorli.lastLaunchedBuild"), StoredValue(current.value_or("")));
    return changed;
  }
};

TEST_F(BuildChangeTest, onlyAnotherStoredBuildIsAChange) {
  EXPECT_FALSE(check("100", "100"));
  EXPECT_FALSE(check("100", ""));
  EXPECT_FALSE(check("100", std::nullopt));
  EXPECT_TRUE(check("101", "100"));
  EXPECT_TRUE(check("100", "100 "));
}

TEST_F(BuildChangeTest, aMissingBuildIsStoredAsTheEmptyTextAndIsNoChangeNextTime) {
  EXPECT_TRUE(check(std::nullopt, "100"));
  EXPECT_FALSE(check("100", defaults.values.at("vorli.lastLaunchedBuild")));
}

TEST_F(BuildChangeTest, aStoredValueThatIsNoTextCountsAsAbsent) {
  EXPECT_FALSE(check("100", StoredValue(std::int64_t{99})));
}

struct HelperLaunchTaskTest : HelperFixture {
  int notifications = 0;

  TaskHandle launch(Reinstall force) {
    return start(helperLaunchTask(scheduler, *manager, force, [this] { ++notifications; }));
  }
};

TEST_F(HelperLaunchTaskTest, aHealthyDaemonEndsTheTaskWithOnePing) {
  const auto handle = launch(Reinstall::ifStale);
  EXPECT_FALSE(handle.isRunning());
  EXPECT_EQ(transport.requests, (Calls{"version", "ping"}));
  EXPECT_TRUE(service.calls.empty());
  EXPECT_EQ(notifications, 0);
}

TEST_F(HelperLaunchTaskTest, aChangedBuildForcesTheFirstRepair) {
  const auto handle = launch(Reinstall::forced);
  scheduler.advance(0.8);
  EXPECT_FALSE(handle.isRunning());
  EXPECT_EQ(service.calls, (Calls{"unregister", "register (program)"}));
  EXPECT_EQ(notifications, 0);
}

TEST_F(HelperLaunchTaskTest, aDeadDaemonIsRepairedTwiceAndThenReported) {
  transport.leadsToDaemon = false;
  const auto handle = launch(Reinstall::ifStale);
  scheduler.advance(0.8);
  EXPECT_EQ(service.calls, (Calls{"unregister", "register (program)", "open login items (program)"}));
  service.calls.clear();

  scheduler.advance(3.0 - frame);
  EXPECT_TRUE(service.calls.empty());
  scheduler.advance(frame);
  EXPECT_EQ(service.calls, Calls{"unregister"});
  EXPECT_EQ(notices("Forced helper reinstall requested"), 1);

  scheduler.advance(0.8 - frame);
  EXPECT_EQ(notifications, 0);
  scheduler.advance(frame);
  EXPECT_EQ(notifications, 1);
  EXPECT_FALSE(handle.isRunning());
}

TEST_F(HelperLaunchTaskTest, aDaemonThatComesBackDuringThePauseIsRepairedAndNotReported) {
  transport.setConduct(Conduct::silent);
  const auto handle = launch(Reinstall::ifStale);
  // version 2.0, two pauses of 0.4, ping 2.0, ping 2.0
  scheduler.advance(6.8);
  EXPECT_EQ(transport.ping.requests, 2);
  transport.setConduct(Conduct::answers);
  scheduler.advance(3.0 + 0.8);
  EXPECT_FALSE(handle.isRunning());
  EXPECT_EQ(transport.ping.requests, 4);
  EXPECT_EQ(notifications, 0);
}

TEST_F(HelperLaunchTaskTest, aDaemonThatAnswersOnlyTheLastPingIsNotReported) {
  transport.setConduct(Conduct::silent);
  const auto handle = launch(Reinstall::ifStale);
  scheduler.advance(6.8 + 3.0 + 0.8 + 2.0 - frame);
  EXPECT_EQ(transport.ping.requests, 3);
  scheduler.advance(frame);
  EXPECT_EQ(transport.ping.requests, 4);
  std::move(transport.ping.held.back())("");
  scheduler.advance(10.0);
  EXPECT_FALSE(handle.isRunning());
  EXPECT_EQ(notifications, 0);
}

TEST_F(HelperLaunchTaskTest, aCancelledPauseDoesNotStopTheTask) {
  transport.leadsToDaemon = false;
  const auto handle = launch(Reinstall::ifStale);
  scheduler.advance(1.0);
  service.calls.clear();
  handle.cancel();
  scheduler.runReady();
  EXPECT_EQ(service.calls, Calls{"unregister"});
  scheduler.advance(0.8);
  EXPECT_EQ(notifications, 1);
}

TEST_F(HelperLaunchTaskTest, aDaemonAwaitingApprovalIsGuidedTwiceAndThenReported) {
  service.rawStatus = 2;
  transport.leadsToDaemon = false;
  launch(Reinstall::forced);
  scheduler.advance(3.0);
  EXPECT_EQ(service.calls, (Calls{"open login items (program)", "open login items (program)"}));
  EXPECT_EQ(notifications, 1);
}

}  // namespace
}  // namespace vorli
