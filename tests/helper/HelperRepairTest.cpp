#include "tests/helper/HelperFixture.h"

namespace vorli {
namespace {

using Case = InstallStatus::Case;
using Calls = std::vector<std::string>;

struct HelperRepairTest : HelperFixture {
  TaskHandle repair(Reinstall force) { return start(manager->reinstallIfStale(force)); }

  /// Runs a repair to its end and returns the calls of the service.
  Calls callsOf(Reinstall force) {
    service.calls.clear();
    const auto handle = repair(force);
    scheduler.advance(10.0);
    EXPECT_FALSE(handle.isRunning());
    return service.calls;
  }
};

TEST_F(HelperRepairTest, aHealthyDaemonIsLeftAlone) {
  EXPECT_TRUE(callsOf(Reinstall::ifStale).empty());
  EXPECT_EQ(notices("Helper healthy at v1.2.3; no reinstall needed"), 1);
  EXPECT_FALSE(manager->isInstalling.get());
}

TEST_F(HelperRepairTest, forceReinstallsAHealthyDaemonAndOpensNothing) {
  EXPECT_EQ(callsOf(Reinstall::forced), (Calls{"unregister", "register"}));
  EXPECT_EQ(notices("Forced helper reinstall requested"), 1);
  EXPECT_EQ(transport.version.requests, 0);
  EXPECT_EQ(notices("Post-reinstall liveness: status=Enabled alive=true force=true"), 1);
}

TEST_F(HelperRepairTest, forceOpensSettingsWhenThePingFailsAfterwards) {
  transport.ping.conduct = Conduct::silent;
  EXPECT_EQ(callsOf(Reinstall::forced), (Calls{"unregister", "register", "open login items"}));
  EXPECT_EQ(notices("Post-reinstall liveness: status=Enabled alive=false force=true"), 1);
}

TEST_F(HelperRepairTest, anyOtherVersionIsStale) {
  for (const char* version : {"1.2.4", "1.2.30", "1.2.3 ", "1.2.2", ""}) {
    transport.version.answer = version;
    EXPECT_EQ(callsOf(Reinstall::ifStale), (Calls{"unregister", "register"})) << version;
    EXPECT_EQ(notices(std::string("Helper needs reinstall: versionStale=true statusBroken=false installed=") +
                      version + " expected=1.2.3 status=Enabled"),
              1);
  }
}

TEST_F(HelperRepairTest, aVersionThatTimesOutIsUnknownAndStale) {
  transport.version.conduct = Conduct::silent;
  repair(Reinstall::ifStale);
  scheduler.advance(2.0 - frame);
  EXPECT_TRUE(service.calls.empty());
  scheduler.advance(frame);
  EXPECT_EQ(service.calls, Calls{"unregister"});
  EXPECT_EQ(notices("Helper needs reinstall: versionStale=true statusBroken=false installed=unknown "
                    "expected=1.2.3 status=Enabled"),
            1);
}

TEST_F(HelperRepairTest, aDaemonAwaitingApprovalIsGuidedToSettingsWhateverTheForce) {
  service.rawStatus = 2;
  for (const auto force : {Reinstall::ifStale, Reinstall::forced}) {
    log.clear();
    EXPECT_EQ(callsOf(force), Calls{"open login items"});
    EXPECT_EQ(log.messages(), Calls{"performReinstall: daemon awaiting approval; guiding to Settings, NOT "
                                    "re-registering"});
  }
  EXPECT_TRUE(transport.requests.empty());
  EXPECT_FALSE(manager->isInstalling.get());
}

TEST_F(HelperRepairTest, everyBrokenStatusIsReinstalledWithAndWithoutForce) {
  const std::pair<int, const char*> rows[] = {{0, "Not registered"}, {3, "Not found"}, {7, "Unknown (7)"}};
  for (const auto& [raw, text] : rows) {
    for (const auto force : {Reinstall::ifStale, Reinstall::forced}) {
      service.rawStatus = raw;
      service.statusAfterRegister = 1;
      EXPECT_EQ(callsOf(force), (Calls{"unregister", "register"})) << raw;
    }
    EXPECT_EQ(notices(std::string("Helper needs reinstall: versionStale=false statusBroken=true "
                                  "installed=1.2.3 expected=1.2.3 status=") +
                      text),
              1);
  }
}

TEST_F(HelperRepairTest, aMissingDaemonThatCannotBeRegisteredEndsInSettings) {
  service.rawStatus = 3;
  service.registerResult = std::unexpected("no such service");
  transport.leadsToDaemon = false;
  EXPECT_EQ(callsOf(Reinstall::ifStale), (Calls{"unregister", "register", "open login items"}));
  EXPECT_EQ(notices("Helper needs reinstall: versionStale=true statusBroken=true installed=unknown "
                    "expected=1.2.3 status=Not found"),
            1);
  EXPECT_EQ(notices("Post-reinstall liveness: status=Not found alive=false force=false"), 1);
  EXPECT_EQ(manager->lastError.get(), "Couldn't set up the helper. no such service");
}

TEST_F(HelperRepairTest, aLivingDaemonWithABrokenStatusEndsInSettings) {
  service.rawStatus = 0;
  service.statusAfterRegister = 2;
  EXPECT_EQ(callsOf(Reinstall::ifStale), (Calls{"unregister", "register", "open login items"}));
  EXPECT_EQ(
      notices("Post-reinstall liveness: status=Awaiting approval in System Settings alive=true force=false"),
      1);
}

TEST_F(HelperRepairTest, theStepsKeepTheirOrderAndTheirPauses) {
  start(manager->pingWithTimeout(2.0));
  service.unregisterSeconds = 1.5;
  transport.ping.delaySeconds = 0.25;
  repair(Reinstall::forced);
  EXPECT_TRUE(manager->isInstalling.get());
  EXPECT_EQ(service.calls, Calls{"unregister"});
  EXPECT_EQ(transport.connectionsAlive(), 1);
  scheduler.advance(1.5);
  EXPECT_EQ(transport.connectionsAlive(), 0);

  scheduler.advance(0.4 - frame);
  EXPECT_EQ(service.calls, Calls{"unregister"});
  scheduler.advance(frame);
  EXPECT_EQ(service.calls, (Calls{"unregister", "register"}));

  scheduler.advance(0.4 - frame);
  EXPECT_EQ(transport.ping.requests, 1);
  scheduler.advance(frame);
  EXPECT_EQ(transport.ping.requests, 2);
  EXPECT_TRUE(manager->isInstalling.get());
  scheduler.advance(0.25);
  EXPECT_FALSE(manager->isInstalling.get());
}

TEST_F(HelperRepairTest, aStatusChangeDuringTheLastPauseCounts) {
  service.rawStatus = 0;
  repair(Reinstall::forced);
  scheduler.advance(0.4);
  EXPECT_EQ(service.calls, (Calls{"unregister", "register"}));
  service.rawStatus = 1;
  scheduler.advance(0.4);
  EXPECT_EQ(notices("Post-reinstall liveness: status=Enabled alive=true force=true"), 1);
  EXPECT_EQ(service.calls, (Calls{"unregister", "register"}));
}

TEST_F(HelperRepairTest, aFailedUnregisterIsLoggedAndTheRepairContinues) {
  service.unregisterResult = std::unexpected("not there");
  EXPECT_EQ(callsOf(Reinstall::forced), (Calls{"unregister", "register"}));
  EXPECT_EQ(errors("Helper unregister failed: not there"), 1);
}

TEST_F(HelperRepairTest, theInvalidationThatARepairCausesIsWipedByItsSuccess) {
  start(manager->pingWithTimeout(2.0));
  repair(Reinstall::forced);
  scheduler.advance(0.2);
  EXPECT_EQ(manager->lastError.get(), "Helper connection invalidated.");
  scheduler.advance(1.0);
  EXPECT_EQ(manager->lastError.get(), std::nullopt);
  EXPECT_EQ(transport.connectionsAlive(), 1);
}

TEST_F(HelperRepairTest, aDeadConnectionToAHealthyDaemonHealsByTheVersionCall) {
  start(manager->pingWithTimeout(2.0));
  transport.lose(0);
  scheduler.runReady();
  EXPECT_TRUE(callsOf(Reinstall::ifStale).empty());
  EXPECT_EQ(transport.connectionsOpened(), 2);
}

TEST_F(HelperRepairTest, simultaneousRequestsShareOneRepair) {
  transport.version.answer = "1.0.0";
  const auto first = tasks->spawn(manager->reinstallIfStale(Reinstall::ifStale));
  const auto second = tasks->spawn(manager->reinstallIfStale(Reinstall::ifStale));
  scheduler.advance(0.8 - frame);
  EXPECT_TRUE(first.isRunning());
  EXPECT_TRUE(second.isRunning());
  scheduler.advance(frame);
  EXPECT_FALSE(first.isRunning());
  EXPECT_FALSE(second.isRunning());
  EXPECT_EQ(service.calls, (Calls{"unregister", "register"}));
  EXPECT_EQ(notices("reinstallIfStale: waiting for in-flight reinstall"), 1);
}

TEST_F(HelperRepairTest, aForcedRequestDoesNotForceARepairInProgress) {
  const auto first = tasks->spawn(manager->reinstallIfStale(Reinstall::ifStale));
  const auto second = tasks->spawn(manager->reinstallIfStale(Reinstall::forced));
  scheduler.advance(5.0);
  EXPECT_FALSE(first.isRunning());
  EXPECT_FALSE(second.isRunning());
  EXPECT_TRUE(service.calls.empty());
}

TEST_F(HelperRepairTest, aRequestAfterAFinishedRepairStartsANewOne) {
  callsOf(Reinstall::forced);
  EXPECT_EQ(callsOf(Reinstall::forced), (Calls{"unregister", "register"}));
  EXPECT_EQ(notices("reinstallIfStale: waiting for in-flight reinstall"), 0);
}

TEST_F(HelperRepairTest, aRepairOutlivesItsCaller) {
  {
    TaskScope caller(scheduler);
    caller.spawn(manager->reinstallIfStale(Reinstall::forced));
    scheduler.runReady();
  }
  EXPECT_TRUE(manager->isInstalling.get());
  const auto waiter = repair(Reinstall::ifStale);
  scheduler.advance(0.8);
  EXPECT_FALSE(manager->isInstalling.get());
  EXPECT_FALSE(waiter.isRunning());
  EXPECT_EQ(service.calls, (Calls{"unregister", "register"}));
}

TEST_F(HelperRepairTest, destroyingTheManagerEndsItsRepair) {
  tasks->spawn(manager->reinstallIfStale(Reinstall::forced));
  scheduler.advance(0.1);
  dropManager();
  scheduler.advance(5.0);
  EXPECT_EQ(service.calls, Calls{"unregister"});
}

// Each wait of a check with its repair, one after the other.
TEST_F(HelperRepairTest, nothingHappensAfterTheManagerIsDestroyedAtAnyMoment) {
  transport.setConduct(Conduct::silent);
  service.unregisterSeconds = 0.5;
  service.answers = false;
  int moments = 0;
  for (bool hasEnded = false; !hasEnded; ++moments) {
    manager.emplace(scheduler, service, transport, bundle);
    tasks.emplace(scheduler);
    service.calls.clear();
    const auto alive = start(manager->ensureHelperAlive());
    for (int i = 0; i < moments; ++i) scheduler.advanceTo(scheduler.earliestDeadline());
    hasEnded = alive->resumes > 0;
    const auto calls = service.calls;
    dropManager();
    log.clear();
    scheduler.advance(100.0);
    EXPECT_EQ(service.calls, calls) << moments;
    EXPECT_TRUE(log.lines().empty()) << moments;
  }
  // Ping, fresh status, unregistering, two pauses, two pings; and the times just before and after.
  EXPECT_GE(moments, 8);
}

TEST_F(HelperRepairTest, theStatusIsReadAnewBeforeItIsJudged) {
  service.rawStatus = 0;
  service.statusAfterRead = 2;
  EXPECT_EQ(callsOf(Reinstall::forced), Calls{"open login items"});
}

TEST_F(HelperRepairTest, aServiceThatDoesNotAnswerDelaysARepairNoLongerThanItsLimit) {
  service.answers = false;
  repair(Reinstall::forced);
  scheduler.advance(HelperTimings::freshStatus - frame);
  EXPECT_TRUE(service.calls.empty());
  scheduler.advance(frame);
  EXPECT_EQ(service.calls, Calls{"unregister"});
}

TEST_F(HelperRepairTest, aHealthyDaemonDoesNotLookBrokenOnASlowlyStartingSystem) {
  service.rawStatus = 0;
  service.statusAfterRead = 1;
  service.readSeconds = 2.0;
  const auto handle = start(manager->reinstallIfStale(Reinstall::ifStale, ports::AskedBy::program));
  scheduler.advance(2.0 - frame);
  EXPECT_EQ(transport.version.requests, 0);
  scheduler.advance(frame);
  EXPECT_FALSE(handle.isRunning());
  EXPECT_EQ(notices("Helper healthy at v1.2.3; no reinstall needed"), 1);
  EXPECT_TRUE(service.calls.empty());
}

TEST_F(HelperRepairTest, aStatusThatWasNeverReadIsNotBroken) {
  service.rawStatus = 0;
  service.answers = false;
  const auto handle = start(manager->reinstallIfStale(Reinstall::ifStale, ports::AskedBy::program));
  scheduler.advance(10.0 - frame);
  EXPECT_TRUE(handle.isRunning());
  scheduler.advance(frame);
  EXPECT_FALSE(handle.isRunning());
  EXPECT_EQ(notices("Helper healthy at v1.2.3; no reinstall needed"), 1);
  EXPECT_TRUE(service.calls.empty());
}

TEST_F(HelperRepairTest, aForcedRepairOfADaemonWhoseStatusWasNeverReadOpensNothing) {
  service.rawStatus = 0;
  service.answers = false;
  EXPECT_EQ(callsOf(Reinstall::forced), (Calls{"unregister", "register"}));
}

TEST_F(HelperRepairTest, onceAStatusIsKnownTheProgramWaitsOnlyAsLongAsAUser) {
  start(manager->reinstallIfStale(Reinstall::ifStale, ports::AskedBy::program));
  service.answers = false;
  start(manager->reinstallIfStale(Reinstall::forced, ports::AskedBy::program));
  scheduler.advance(0.5 - frame);
  EXPECT_TRUE(service.calls.empty());
  scheduler.advance(frame);
  EXPECT_EQ(service.calls, Calls{"unregister"});
}

TEST_F(HelperRepairTest, theStatusAfterARegistrationIsReadAnewBeforeItIsJudged) {
  service.rawStatus = 0;
  repair(Reinstall::forced);
  service.readSeconds = 0.3;
  service.statusAfterRead = 1;
  scheduler.advance(0.4 + 0.4 + 0.3);
  EXPECT_EQ(notices("Post-reinstall liveness: status=Enabled alive=true force=true"), 1);
  EXPECT_EQ(service.calls, (Calls{"unregister", "register"}));
}

TEST_F(HelperRepairTest, aRepairByTheProgramIsMarkedAsSuch) {
  transport.leadsToDaemon = false;
  start(manager->reinstallIfStale(Reinstall::forced, ports::AskedBy::program));
  scheduler.advance(1.0);
  EXPECT_EQ(service.calls, (Calls{"unregister", "register (program)", "open login items (program)"}));
}

TEST_F(HelperRepairTest, aUserWhoJoinsARepairBecomesItsRequester) {
  transport.leadsToDaemon = false;
  start(manager->reinstallIfStale(Reinstall::forced, ports::AskedBy::program));
  repair(Reinstall::forced);
  scheduler.advance(1.0);
  EXPECT_EQ(service.calls, (Calls{"unregister", "register", "open login items"}));
}

TEST_F(HelperRepairTest, theUserStaysTheRequesterWhenTheProgramJoins) {
  transport.leadsToDaemon = false;
  repair(Reinstall::forced);
  start(manager->reinstallIfStale(Reinstall::forced, ports::AskedBy::program));
  scheduler.advance(1.0);
  EXPECT_EQ(service.calls, (Calls{"unregister", "register", "open login items"}));
}

}  // namespace
}  // namespace vorli
