#include "helper/HelperManager.h"
#include "tests/fakes/Publish.h"
#include "tests/helper/HelperFixture.h"

namespace vorli {
namespace {

using Case = InstallStatus::Case;
using Calls = std::vector<std::string>;

struct HelperManagerTest : HelperFixture {
  void makeBundleLie(bool inApplications) {
    bundle.path = inApplications ? "/usr/bin/vorli" : "/home/kim/Downloads/vorli";
    bundle.home = "/home/kim";
  }
};

TEST_F(HelperManagerTest, startsUnregisteredAndWithoutAnError) {
  EXPECT_EQ(manager->status.get(), Case::notRegistered);
  EXPECT_EQ(manager->lastError.get(), std::nullopt);
  EXPECT_FALSE(manager->isInstalling.get());
}

TEST_F(HelperManagerTest, statusMirrorsTheService) {
  const std::pair<int, InstallStatus> rows[] = {{0, Case::notRegistered},
                                                {1, Case::enabled},
                                                {2, Case::requiresApproval},
                                                {3, Case::notFound},
                                                {7, InstallStatus::unknown(7)}};
  for (const auto& [raw, expected] : rows) {
    service.rawStatus = raw;
    manager->refreshStatus();
    EXPECT_EQ(manager->status.get(), expected) << raw;
  }
}

TEST_F(HelperManagerTest, onlyEnabledWipesLastError) {
  for (const int raw : {0, 2, 3, 7}) {
    fakes::publish(manager->lastError, "something");
    service.rawStatus = raw;
    manager->refreshStatus();
    EXPECT_EQ(manager->lastError.get(), "something") << raw;
  }
  service.rawStatus = 1;
  manager->refreshStatus();
  EXPECT_EQ(manager->lastError.get(), std::nullopt);
}

TEST_F(HelperManagerTest, aDaemonOfAnotherBuildIsReportedUntilItIsReplaced) {
  service.isOtherBuild = true;
  service.rawStatus = 2;
  manager->refreshStatus();
  EXPECT_FALSE(manager->isOtherBuildInstalled.get());
  service.rawStatus = 1;
  manager->refreshStatus();
  EXPECT_TRUE(manager->isOtherBuildInstalled.get());

  int changes = 0;
  const auto watching = manager->isOtherBuildInstalled.subscribeToChanges([&](bool) { ++changes; });
  service.registerResult = std::unexpected("The background helper is of another build.");
  manager->registerDaemon(ports::AskedBy::program);
  EXPECT_TRUE(manager->isOtherBuildInstalled.get());
  EXPECT_EQ(changes, 0);

  service.isOtherBuild = false;
  service.changeStatus(1);
  scheduler.runReady();
  EXPECT_FALSE(manager->isOtherBuildInstalled.get());
  EXPECT_EQ(changes, 1);
}

TEST_F(HelperManagerTest, aStatusChangeReportedByTheSystemIsPublished) {
  service.changeStatus(2);
  EXPECT_EQ(manager->status.get(), Case::notRegistered);
  scheduler.runReady();
  EXPECT_EQ(manager->status.get(), Case::requiresApproval);

  service.changeStatus(1);
  manager.reset();
  scheduler.runReady();
}

TEST_F(HelperManagerTest, aSuccessfulRegistrationClearsLastErrorAndRefreshesTheStatus) {
  makeBundleLie(true);
  fakes::publish(manager->lastError, "something");
  service.rawStatus = 0;
  service.statusAfterRegister = 2;
  manager->registerDaemon();
  EXPECT_EQ(notices("register() called. App bundle: /usr/bin/vorli. App in /Applications: true"), 1);
  EXPECT_EQ(notices("service.register() succeeded"), 1);
  EXPECT_EQ(manager->lastError.get(), std::nullopt);
  EXPECT_EQ(manager->status.get(), Case::requiresApproval);
  EXPECT_EQ(service.calls, Calls{"register"});
}

TEST_F(HelperManagerTest, aForbiddenRegistrationOutsideOfApplicationsNamesTheRemedy) {
  makeBundleLie(false);
  service.rawStatus = 3;
  for (const char* text : {"Operation not permitted", "operation not permitted",
                           "The call failed: OPERATION NOT PERMITTED (1)"}) {
    fakes::publish(manager->lastError, std::nullopt);
    service.registerResult = std::unexpected(text);
    manager->registerDaemon();
    EXPECT_EQ(manager->lastError.get(),
              "Vorli needs to live in your Applications folder. Drag Vorli there from the DMG, then reopen.");
    EXPECT_EQ(errors(std::string("service.register() failed: ") + text), 1);
  }
  EXPECT_EQ(notices("register() called. App bundle: /home/kim/Downloads/vorli. App in /Applications: false"),
            3);
  EXPECT_EQ(manager->status.get(), Case::notFound);
}

TEST_F(HelperManagerTest, onLinuxTheRemedyIsToInstallIt) {
  manager.emplace(scheduler, service, transport, bundle, HelperTexts::linuxDesktop);
  bundle.path = "/home/anna/Downloads/vorli";
  service.rawStatus = 3;
  service.registerResult = std::unexpected("Operation not permitted");
  manager->registerDaemon();
  EXPECT_EQ(manager->lastError.get(),
            "Vorli needs to be installed before it can set up its helper. Install its package or run its "
            "installer, then reopen.");
}

TEST_F(HelperManagerTest, aForbiddenRegistrationInsideOfApplicationsShowsTheSystemsText) {
  makeBundleLie(true);
  service.rawStatus = 0;
  service.registerResult = std::unexpected("Operation not permitted");
  manager->registerDaemon();
  EXPECT_EQ(manager->lastError.get(), "Couldn't set up the helper. Operation not permitted");
}

TEST_F(HelperManagerTest, anyOtherFailureShowsTheSystemsTextWhereverTheBundleIs) {
  service.rawStatus = 0;
  service.registerResult = std::unexpected("Operation not permit");
  for (const bool inApplications : {true, false}) {
    makeBundleLie(inApplications);
    manager->registerDaemon();
    EXPECT_EQ(manager->lastError.get(), "Couldn't set up the helper. Operation not permit");
  }
}

TEST_F(HelperManagerTest, theErrorOfAFailedReplacementStaysThoughTheDaemonWorks) {
  service.isOtherBuild = true;
  manager->refreshStatus();
  service.failRegistration("Its installation failed with code 1.");
  service.missPrompt();
  scheduler.runReady();
  EXPECT_EQ(manager->lastError.get(), "Couldn't set up the helper. Its installation failed with code 1.");
  EXPECT_TRUE(manager->lacksPrompt.get());
}

TEST_F(HelperManagerTest, aFailedRegistrationThatFindsItEnabledLeavesNoError) {
  service.registerResult = std::unexpected("already there");
  service.rawStatus = 1;
  manager->registerDaemon();
  EXPECT_EQ(manager->lastError.get(), std::nullopt);
}

TEST_F(HelperManagerTest, aLateRegistrationFailureIsReportedLikeAnImmediateOne) {
  makeBundleLie(true);
  service.rawStatus = 2;
  manager->registerDaemon();
  EXPECT_EQ(manager->lastError.get(), std::nullopt);
  service.rawStatus = 0;
  service.failRegistration("The password was not given.");
  scheduler.runReady();
  EXPECT_EQ(manager->lastError.get(), "Couldn't set up the helper. The password was not given.");
  EXPECT_EQ(errors("service.register() failed: The password was not given."), 1);
  EXPECT_EQ(manager->status.get(), Case::notRegistered);

  service.failRegistration("too late");
  manager.reset();
  scheduler.runReady();
}

TEST_F(HelperManagerTest, aMissingPasswordWindowIsReportedUntilTheUserAsksAgainOrItIsEnabled) {
  service.rawStatus = 2;
  const auto miss = [this] {
    service.missPrompt();
    scheduler.runReady();
    EXPECT_TRUE(manager->lacksPrompt.get());
  };
  miss();
  manager->openLoginItems();
  EXPECT_FALSE(manager->lacksPrompt.get());
  miss();
  manager->registerDaemon();
  EXPECT_FALSE(manager->lacksPrompt.get());
  miss();
  manager->registerDaemon(ports::AskedBy::program);
  EXPECT_TRUE(manager->lacksPrompt.get());
  service.changeStatus(1);
  scheduler.runReady();
  EXPECT_FALSE(manager->lacksPrompt.get());
}

TEST_F(HelperManagerTest, loginItemsAreOpenedForTheUser) {
  manager->openLoginItems();
  EXPECT_EQ(service.calls, Calls{"open login items"});
}

TEST_F(HelperManagerTest, consentIsAskedForAtTheUsersRequest) {
  manager->askForStartupItemConsent();
  EXPECT_EQ(service.calls, Calls{"ask for consent"});
}

TEST_F(HelperManagerTest, anApprovalThatCannotBeGivenIsReportedUntilTheNextRequest) {
  const auto refuse = [this] {
    service.consentResult = std::unexpected("There is no window for it.");
    manager->askForStartupItemConsent();
    scheduler.runReady();
    EXPECT_EQ(manager->approvalObstacle.get(), "There is no window for it.");
  };
  refuse();
  manager->refreshStatus();  // the daemon itself may be healthy
  EXPECT_EQ(manager->status.get(), Case::enabled);
  EXPECT_EQ(manager->lastError.get(), std::nullopt);
  EXPECT_EQ(manager->approvalObstacle.get(), "There is no window for it.");
  manager->openLoginItems();
  EXPECT_EQ(manager->approvalObstacle.get(), std::nullopt);
  refuse();
  manager->registerDaemon();
  EXPECT_EQ(manager->approvalObstacle.get(), std::nullopt);

  service.failRegistration("Its service is masked.");
  scheduler.runReady();
  EXPECT_EQ(manager->approvalObstacle.get(), "Its service is masked.");
  service.consentResult = {};
  manager->askForStartupItemConsent();
  EXPECT_EQ(manager->approvalObstacle.get(), std::nullopt);
  scheduler.runReady();
  EXPECT_EQ(manager->approvalObstacle.get(), std::nullopt);
}

TEST_F(HelperManagerTest, aConsentAnswerAfterTheManagerIsDestroyedDoesNothing) {
  service.consentResult = std::unexpected("too late");
  manager->askForStartupItemConsent();
  manager.reset();
  scheduler.runReady();
}

TEST_F(HelperManagerTest, theStateAsATextHoldsTheStatusAndTheLastError) {
  EXPECT_EQ(manager->stateText(), "Background helper: Not registered.");
  service.rawStatus = 3;
  manager->refreshStatus();
  fakes::publish(manager->lastError, "Couldn't set up the helper. It is away.");
  EXPECT_EQ(manager->stateText(), "Background helper: Not found.\n\nCouldn't set up the helper. It is away.");
}

struct EnsureHelperAliveTest : HelperFixture {};

TEST_F(EnsureHelperAliveTest, aLivingDaemonIsReachableAndNothingElseHappens) {
  service.rawStatus = 0;
  EXPECT_EQ(start(manager->ensureHelperAlive())->value, HelperReachability::reachable);
  EXPECT_TRUE(service.calls.empty());
  EXPECT_EQ(transport.requests, Calls{"ping"});
}

TEST_F(EnsureHelperAliveTest, aDaemonAwaitingApprovalLeadsToSettingsAndIsNotReinstalled) {
  transport.setConduct(Conduct::silent);
  service.rawStatus = 2;
  const auto outcome = start(manager->ensureHelperAlive());
  scheduler.advance(2.0 - frame);
  EXPECT_EQ(outcome->resumes, 0);
  scheduler.advance(frame);
  EXPECT_EQ(outcome->value, HelperReachability::needsApproval);
  EXPECT_EQ(service.calls, Calls{"open login items"});
}

TEST_F(EnsureHelperAliveTest, aDeadDaemonIsReinstalledByForceAndThenReachable) {
  transport.leadsToDaemon = false;
  const auto outcome = start(manager->ensureHelperAlive());
  EXPECT_EQ(notices("Forced helper reinstall requested"), 1);
  transport.leadsToDaemon = true;
  scheduler.advance(1.0);
  EXPECT_EQ(outcome->value, HelperReachability::reachable);
  EXPECT_EQ(service.calls, (Calls{"unregister", "register"}));
  EXPECT_EQ(transport.ping.requests, 2);  // the repair's own and the one after it
}

TEST_F(EnsureHelperAliveTest, aDaemonThatStaysDeadIsUnreachable) {
  transport.leadsToDaemon = false;
  const auto outcome = start(manager->ensureHelperAlive());
  scheduler.advance(1.0);
  EXPECT_EQ(outcome->value, HelperReachability::unreachable);
  EXPECT_EQ(service.calls, (Calls{"unregister", "register", "open login items"}));
}

TEST_F(EnsureHelperAliveTest, aReinstallThatEndsAwaitingApprovalNeedsApproval) {
  transport.leadsToDaemon = false;
  service.rawStatus = 0;
  service.statusAfterRegister = 2;
  const auto outcome = start(manager->ensureHelperAlive());
  scheduler.advance(1.0);
  EXPECT_EQ(outcome->value, HelperReachability::needsApproval);
  EXPECT_EQ(service.calls, (Calls{"unregister", "register", "open login items"}));
}

TEST_F(EnsureHelperAliveTest, anApprovalThatIsMissingSinceTheLastPingNeedsApproval) {
  transport.setConduct(Conduct::silent);
  const auto outcome = start(manager->ensureHelperAlive());
  scheduler.advance(2.0 + 0.4 + 0.4 + 2.0);
  EXPECT_EQ(transport.ping.requests, 3);
  service.rawStatus = 2;
  scheduler.advance(2.0);
  EXPECT_EQ(outcome->value, HelperReachability::needsApproval);
}

TEST_F(EnsureHelperAliveTest, aLivingDaemonWithoutTheUsersConsentNeedsApproval) {
  service.consent = ports::Consent::missing;
  EXPECT_EQ(start(manager->ensureHelperAlive())->value, HelperReachability::needsApproval);
  EXPECT_EQ(service.calls, Calls{"ask for consent"});
}

TEST_F(EnsureHelperAliveTest, aSlowStatusIsWaitedFor) {
  transport.leadsToDaemon = false;
  service.rawStatus = 1;
  service.statusAfterRead = 2;
  service.readSeconds = 0.3;
  const auto outcome = start(manager->ensureHelperAlive());
  scheduler.advance(0.3);
  EXPECT_EQ(outcome->value, HelperReachability::needsApproval);
  EXPECT_EQ(service.calls, Calls{"open login items"});
}

TEST_F(EnsureHelperAliveTest, consentIsAskedForAfterAReinstallToo) {
  transport.leadsToDaemon = false;
  service.consent = ports::Consent::missing;
  const auto outcome = start(manager->ensureHelperAlive());
  transport.leadsToDaemon = true;
  scheduler.advance(1.0);
  EXPECT_EQ(outcome->value, HelperReachability::needsApproval);
  EXPECT_EQ(service.calls, (Calls{"unregister", "register", "ask for consent"}));
}

TEST_F(EnsureHelperAliveTest, anUnansweredConsentHoldsTheActionBackNoLongerThanItsLimit) {
  service.answers = false;
  const auto outcome = start(manager->ensureHelperAlive());
  scheduler.advance(HelperTimings::consent - frame);
  EXPECT_EQ(outcome->resumes, 0);
  scheduler.advance(frame);
  EXPECT_EQ(outcome->value, HelperReachability::reachable);
}

}  // namespace
}  // namespace vorli
