#include "startup/StartupItemService.h"
#include "tests/fakes/Publish.h"
#include "tests/startup/StartupFixture.h"

#include <gtest/gtest.h>

namespace vorli {
namespace {

using UndoKind = UndoAction::Kind;
using Reason = HelperUnavailable::Reason;
using Strings = std::vector<std::string>;

struct ItemActionsTest : StartupFixture {
  ItemActionsTest() {
    service.rawStatus = 1;
    transport.moveLaunchAgentPlist.conduct = Conduct::answers;
  }

  /// Makes the helper move files correctly.
  void letHelperMove() { transport.whenAnswered = moveAsHelper(); }

  void addMine() {
    files.add(mine, "/opt/acme");
    files.add("/opt/acme");
    scan();
  }
  void addSystems() {
    files.add(systems, "/opt/acme");
    files.add("/opt/acme");
    letHelperMove();
    scan();
  }
  std::string at(const std::string& path) const {
    const auto found = files.files.find(path);
    return found == files.files.end() ? "nothing" : found->second.content;
  }
  StartupItem agent() const { return item("com.acme.agent"); }
  StartupItem daemon() const { return item("com.acme.daemon"); }
  static std::string paused(const char* path) { return std::string(path) + ".vorli-disabled"; }
  static std::string removed(const char* path) { return std::string(path) + ".vorli-removed"; }
};

// The user's own jobs

TEST_F(ItemActionsTest, aPauseUnloadsFirstAndMovesThen) {
  addMine();
  Strings present;
  launchControl.whenCalled = [&] { present = paths(); };
  startup->setEnabled(Enablement::paused, agent(), CreateUndo::yes);
  EXPECT_FALSE(agent().isEnabled);  // at once
  EXPECT_EQ(at(mine), "/opt/acme");
  settle();
  EXPECT_EQ(launchControl.calls, Strings{std::string("unload ") + mine});
  EXPECT_EQ(present, (Strings{mine, "/opt/acme"}));
  EXPECT_EQ(at(paused(mine)), "/opt/acme");
  EXPECT_EQ(at(mine), "nothing");
  EXPECT_FALSE(agent().isEnabled);
  EXPECT_EQ(agent().plistURL, mine);
}

TEST_F(ItemActionsTest, aResumeMovesFirstAndLoadsThen) {
  files.add(paused(mine), "/opt/acme");
  scan();
  EXPECT_FALSE(agent().isEnabled);
  Strings present;
  launchControl.whenCalled = [&] { present = paths(); };
  startup->setEnabled(Enablement::enabled, agent(), CreateUndo::yes);
  EXPECT_TRUE(agent().isEnabled);
  settle();
  EXPECT_EQ(launchControl.calls, Strings{std::string("load ") + mine});
  EXPECT_EQ(present, Strings{mine});
  EXPECT_TRUE(agent().isEnabled);
  EXPECT_EQ(startup->pendingUndo.get(), std::nullopt);
}

TEST_F(ItemActionsTest, aResumeLoadsAlsoWhatIsEnabledAlready) {
  addMine();
  startup->setEnabled(Enablement::enabled, agent(), CreateUndo::no);
  settle();
  EXPECT_EQ(launchControl.calls, Strings{std::string("load ") + mine});
  EXPECT_EQ(at(mine), "/opt/acme");
}

TEST_F(ItemActionsTest, aMoveNeverReplaces) {
  files.add(mine, "fresh");
  files.add(paused(mine), "old");
  scan();
  startup->setEnabled(Enablement::enabled, agent(), CreateUndo::no);
  settle();
  EXPECT_EQ(at(mine), "fresh");
  EXPECT_EQ(at(paused(mine)), "old");
  EXPECT_TRUE(launchControl.calls.empty());
  EXPECT_FALSE(agent().isEnabled);  // both files exist: one row, disabled

  startup->setEnabled(Enablement::paused, agent(), CreateUndo::no);
  settle();
  EXPECT_EQ(at(mine), "fresh");
  EXPECT_EQ(at(paused(mine)), "old");
}

TEST_F(ItemActionsTest, aFailedMoveIsCorrectedByTheNextScan) {
  addMine();
  files.locked = {""};
  startup->setEnabled(Enablement::paused, agent(), CreateUndo::yes);
  EXPECT_FALSE(agent().isEnabled);
  settle();
  EXPECT_TRUE(agent().isEnabled);
  EXPECT_EQ(at(mine), "/opt/acme");
  EXPECT_EQ(startup->helperUnavailable.get(), std::nullopt);

  startup->remove(agent(), CreateUndo::yes);
  EXPECT_FALSE(isListed("com.acme.agent"));
  settle();
  EXPECT_TRUE(isListed("com.acme.agent"));
}

TEST_F(ItemActionsTest, onlyARequestedPauseCanBeUndone) {
  addMine();
  startup->setEnabled(Enablement::paused, agent(), CreateUndo::yes);
  EXPECT_EQ(startup->pendingUndo.get(),
            (UndoAction{UndoKind::paused, "com.acme.agent", "Acme Agent", calendar.now(), std::nullopt}));
  fakes::publish(startup->pendingUndo, std::nullopt);
  startup->setEnabled(Enablement::paused, agent(), CreateUndo::no);
  startup->setEnabled(Enablement::enabled, agent(), CreateUndo::yes);
  EXPECT_EQ(startup->pendingUndo.get(), std::nullopt);
}

TEST_F(ItemActionsTest, undoOfAPausePutsTheFileBackAndLoadsIt) {
  addMine();
  startup->setEnabled(Enablement::paused, agent(), CreateUndo::yes);
  settle();
  startup->undoPause(*startup->pendingUndo.get());
  EXPECT_EQ(startup->pendingUndo.get(), std::nullopt);
  EXPECT_TRUE(agent().isEnabled);
  settle();
  EXPECT_EQ(at(mine), "/opt/acme");
  EXPECT_EQ(launchControl.calls.back(), std::string("load ") + mine);
}

TEST_F(ItemActionsTest, undoOfAPauseWhoseRowIsGoneOnlyClears) {
  addMine();
  startup->setEnabled(Enablement::paused, agent(), CreateUndo::yes);
  settle();
  fakes::publish(startup->items, std::vector<StartupItem>());
  startup->undoPause(*startup->pendingUndo.get());
  settle();
  EXPECT_EQ(startup->pendingUndo.get(), std::nullopt);
  EXPECT_EQ(at(paused(mine)), "/opt/acme");
}

TEST_F(ItemActionsTest, aRemovalMovesTheFileOutOfEveryScan) {
  addMine();
  startup->remove(agent(), CreateUndo::yes);
  EXPECT_FALSE(isListed("com.acme.agent"));
  EXPECT_EQ(startup->pendingUndo.get(),
            (UndoAction{UndoKind::removed, "com.acme.agent", "Acme Agent", calendar.now(), mine}));
  settle();
  EXPECT_EQ(at(removed(mine)), "/opt/acme");
  EXPECT_EQ(launchControl.calls, Strings{std::string("unload ") + mine});
  EXPECT_FALSE(isListed("com.acme.agent"));
}

TEST_F(ItemActionsTest, undoOfARemovalBringsTheFileBackUnloaded) {
  addMine();
  startup->remove(agent(), CreateUndo::yes);
  settle();
  startup->undoRemove(*startup->pendingUndo.get());
  settle();
  EXPECT_EQ(at(mine), "/opt/acme");
  EXPECT_EQ(startup->pendingUndo.get(), std::nullopt);
  EXPECT_TRUE(isListed("com.acme.agent"));
  EXPECT_EQ(launchControl.calls, Strings{std::string("unload ") + mine});
}

TEST_F(ItemActionsTest, undoOfARemovalReplacesNothingAndNeedsItsFile) {
  addMine();
  startup->remove(agent(), CreateUndo::yes);
  settle();
  files.add(mine, "made meanwhile");
  startup->undoRemove(*startup->pendingUndo.get());
  settle();
  EXPECT_EQ(at(mine), "made meanwhile");
  EXPECT_EQ(at(removed(mine)), "/opt/acme");

  files.files.erase(removed(mine));
  startup->undoRemove({UndoKind::removed, "com.acme.agent", "Acme", Date{}, mine});
  settle();
  EXPECT_EQ(at(mine), "made meanwhile");
}

TEST_F(ItemActionsTest, anUndoLeavesTheOfferOfALaterAction) {
  addMine();
  startup->remove(agent(), CreateUndo::yes);
  settle();
  startup->undoRemove(*startup->pendingUndo.get());
  const UndoAction later{UndoKind::paused, "com.acme.other", "Other", calendar.now(), std::nullopt};
  fakes::publish(startup->pendingUndo, later);
  settle();
  EXPECT_EQ(at(mine), "/opt/acme");
  EXPECT_EQ(startup->pendingUndo.get(), later);
}

TEST_F(ItemActionsTest, anUndoWithoutAPlaceDoesNothing) {
  const UndoAction placeless{UndoKind::removed, "com.acme.agent", "Acme", Date{}, std::nullopt};
  fakes::publish(startup->pendingUndo, placeless);
  startup->undoRemove(placeless);
  startup->commitRemoval(placeless);
  settle();
  EXPECT_EQ(startup->pendingUndo.get(), placeless);
  EXPECT_EQ(background.started, 0);
}

TEST_F(ItemActionsTest, aCommitDeletesTheRemovedFileAlone) {
  addMine();
  startup->remove(agent(), CreateUndo::yes);
  settle();
  files.add(mine, "made meanwhile");
  startup->commitRemoval(*startup->pendingUndo.get());
  settle();
  EXPECT_EQ(paths(), (Strings{mine, "/opt/acme"}));
}

TEST_F(ItemActionsTest, removingAPausedRowMovesNothing) {
  files.add(paused(mine), "/opt/acme");
  scan();
  startup->remove(agent(), CreateUndo::yes);
  EXPECT_FALSE(isListed("com.acme.agent"));
  EXPECT_NE(startup->pendingUndo.get(), std::nullopt);
  settle();
  EXPECT_TRUE(isListed("com.acme.agent"));
  EXPECT_EQ(at(paused(mine)), "/opt/acme");
  EXPECT_EQ(launchControl.calls, Strings{std::string("unload ") + mine});
}

TEST_F(ItemActionsTest, aLaterActionTakesThePlaceOfAnEarlierUndo) {
  addMine();
  files.add("/home/kim/Library/LaunchAgents/com.other.tool.plist");
  scan();
  startup->remove(agent(), CreateUndo::yes);
  startup->setEnabled(Enablement::paused, item("com.other.tool"), CreateUndo::yes);
  EXPECT_EQ(startup->pendingUndo->value().itemID, "com.other.tool");
  settle();
  EXPECT_EQ(at(removed(mine)), "/opt/acme");  // never deleted: its countdown was replaced
}

TEST_F(ItemActionsTest, theLaterOfTwoSimultaneousActionsWins) {
  addMine();
  const auto row = agent();
  startup->setEnabled(Enablement::paused, row, CreateUndo::yes);
  startup->setEnabled(Enablement::enabled, row, CreateUndo::no);
  settle();
  EXPECT_EQ(at(mine), "/opt/acme");
  EXPECT_TRUE(agent().isEnabled);

  startup->remove(row, CreateUndo::yes);
  startup->undoRemove(*startup->pendingUndo.get());
  settle();
  EXPECT_EQ(at(mine), "/opt/acme");
  EXPECT_TRUE(isListed("com.acme.agent"));
}

// Without a file

TEST_F(ItemActionsTest, anItemWithoutAFileOpensTheSystemsSettings) {
  source.extra = {{.identifier = "com.store.item"}};
  scan();
  const auto before = startup->items.get();
  startup->setEnabled(Enablement::paused, item("com.store.item"), CreateUndo::yes);
  startup->remove(item("com.store.item"), CreateUndo::yes);
  EXPECT_EQ(settings.openings, 1);
  EXPECT_EQ(startup->items.get(), before);
  EXPECT_EQ(startup->pendingUndo.get(), std::nullopt);
  settle();
  EXPECT_TRUE(launchControl.calls.empty());
  EXPECT_TRUE(transport.requests.empty());
}

// The system's jobs

TEST_F(ItemActionsTest, theHelperMovesWhatIsTheSystems) {
  addSystems();
  startup->setEnabled(Enablement::paused, daemon(), CreateUndo::yes);
  settle();
  EXPECT_EQ(transport.requests,
            (Strings{"ping", std::string("moveLaunchAgentPlist ") + systems + " " + paused(systems)}));
  EXPECT_EQ(at(paused(systems)), "/opt/acme");
  EXPECT_FALSE(daemon().isEnabled);
  EXPECT_TRUE(launchControl.calls.empty());

  startup->undoPause(*startup->pendingUndo.get());
  settle();
  EXPECT_EQ(at(systems), "/opt/acme");
  EXPECT_TRUE(daemon().isEnabled);
}

TEST_F(ItemActionsTest, theHelperRemovesAndBringsBackWithoutBeingAskedWhetherItLives) {
  addSystems();
  startup->remove(daemon(), CreateUndo::yes);
  settle();
  EXPECT_EQ(at(removed(systems)), "/opt/acme");
  const int pings = requests("ping");
  startup->undoRemove(*startup->pendingUndo.get());
  settle();
  EXPECT_EQ(at(systems), "/opt/acme");
  EXPECT_EQ(requests("ping"), pings);
  EXPECT_EQ(startup->pendingUndo.get(), std::nullopt);
}

TEST_F(ItemActionsTest, filesRemovedByTheHelperAreNeverDeleted) {
  addSystems();
  startup->remove(daemon(), CreateUndo::yes);
  settle();
  startup->commitRemoval(*startup->pendingUndo.get());
  settle();
  EXPECT_EQ(at(removed(systems)), "/opt/acme");
  EXPECT_FALSE(isListed("com.acme.daemon"));
}

TEST_F(ItemActionsTest, aUsersFolderOfTheSameNameIsNotTheSystems) {
  files.add("/home/kim/Library/LaunchAgents/a.plist.vorli-removed", "x");
  startup->undoRemove({UndoKind::removed, "a", "A", Date{}, "/home/kim/Library/LaunchAgents/a.plist"});
  settle();
  EXPECT_EQ(at("/home/kim/Library/LaunchAgents/a.plist"), "x");
  EXPECT_TRUE(transport.requests.empty());
}

TEST_F(ItemActionsTest, aHelperAwaitingApprovalRevertsThePause) {
  addSystems();
  transport.setConduct(Conduct::silent);
  service.rawStatus = 2;
  startup->setEnabled(Enablement::paused, daemon(), CreateUndo::yes);
  EXPECT_FALSE(daemon().isEnabled);
  scheduler.advance(1.99);
  EXPECT_EQ(startup->helperUnavailable.get(), std::nullopt);
  scheduler.advance(0.01);
  EXPECT_EQ(startup->helperUnavailable.get(),
            (HelperUnavailable{"Acme Daemon", calendar.now(), Reason::notApproved}));
  EXPECT_EQ(startup->pendingUndo.get(), std::nullopt);
  EXPECT_EQ(service.calls, Strings{"open login items"});
  settle();
  EXPECT_TRUE(daemon().isEnabled);
  EXPECT_EQ(at(systems), "/opt/acme");
  EXPECT_EQ(requests("move"), 0);
}

TEST_F(ItemActionsTest, aSilentHelperIsRepairedAndThenReported) {
  addSystems();
  transport.setConduct(Conduct::silent);
  startup->setEnabled(Enablement::paused, daemon(), CreateUndo::yes);
  scheduler.advance(60.0);
  EXPECT_EQ(startup->helperUnavailable->value().reason, Reason::notResponding);
  EXPECT_TRUE(std::ranges::count(service.calls, "register") > 0);
  EXPECT_EQ(startup->pendingUndo.get(), std::nullopt);
  EXPECT_TRUE(daemon().isEnabled);
}

TEST_F(ItemActionsTest, aRefusedMoveIsTriedOnceMoreAfterARepair) {
  addSystems();
  transport.whenAnswered = nullptr;
  transport.moveLaunchAgentPlist.answer = {5, "refused"};
  startup->setEnabled(Enablement::paused, daemon(), CreateUndo::yes);
  scheduler.advance(60.0);
  EXPECT_EQ(requests("move"), 2);
  EXPECT_EQ(std::ranges::count(service.calls, "unregister"), 1);
  EXPECT_EQ(startup->helperUnavailable->value().reason, Reason::notResponding);
  EXPECT_TRUE(daemon().isEnabled);
}

TEST_F(ItemActionsTest, aMoveThatWorksAfterTheRepairIsNoFailure) {
  addSystems();
  transport.whenAnswered = [this, n = 0](const std::string& request) mutable {
    if (!request.starts_with("move")) return;
    transport.moveLaunchAgentPlist.answer = {n++ == 0 ? 5 : 0, ""};
    if (n > 1) moveAsHelper()(request);
  };
  startup->remove(daemon(), CreateUndo::yes);
  scheduler.advance(60.0);
  EXPECT_EQ(startup->helperUnavailable.get(), std::nullopt);
  EXPECT_EQ(at(removed(systems)), "/opt/acme");
}

TEST_F(ItemActionsTest, theNextScanExposesALyingHelper) {
  addSystems();
  transport.whenAnswered = nullptr;
  transport.moveLaunchAgentPlist.answer = {0, "moved"};
  startup->setEnabled(Enablement::paused, daemon(), CreateUndo::yes);
  EXPECT_FALSE(daemon().isEnabled);
  settle();
  EXPECT_TRUE(daemon().isEnabled);
  EXPECT_EQ(startup->helperUnavailable.get(), std::nullopt);
}

TEST_F(ItemActionsTest, aFailedRemovalLeavesItsUndoToRunOut) {
  addSystems();
  transport.whenAnswered = nullptr;
  transport.moveLaunchAgentPlist.answer = {5, "refused"};
  startup->remove(daemon(), CreateUndo::yes);
  scheduler.advance(60.0);
  EXPECT_EQ(startup->helperUnavailable->value().reason, Reason::notResponding);
  EXPECT_EQ(startup->pendingUndo->value().itemID, "com.acme.daemon");
  EXPECT_TRUE(isListed("com.acme.daemon"));
}

TEST_F(ItemActionsTest, aFailedPauseKeepsTheUndoOfAnotherItem) {
  addSystems();
  files.add(mine);
  scan();
  transport.whenAnswered = nullptr;
  transport.moveLaunchAgentPlist.answer = {5, "refused"};
  startup->setEnabled(Enablement::paused, daemon(), CreateUndo::yes);
  startup->setEnabled(Enablement::paused, agent(), CreateUndo::yes);
  scheduler.advance(60.0);
  EXPECT_EQ(startup->pendingUndo->value().itemID, "com.acme.agent");
}

TEST_F(ItemActionsTest, anUndoWaitsForTheRemovalThatItTakesBack) {
  addSystems();
  transport.moveLaunchAgentPlist.delaySeconds = 3.0;
  startup->remove(daemon(), CreateUndo::yes);
  scheduler.advance(0.5);
  startup->undoRemove(*startup->pendingUndo.get());
  scheduler.advance(2.0);
  EXPECT_EQ(requests("move"), 1);
  scheduler.advance(20.0);
  EXPECT_EQ(requests("move"), 2);
  EXPECT_EQ(at(systems), "/opt/acme");
  EXPECT_TRUE(isListed("com.acme.daemon"));
}

TEST_F(ItemActionsTest, destroyingTheServiceCancelsItsHelperCalls) {
  addSystems();
  transport.setConduct(Conduct::silent);
  startup->setEnabled(Enablement::paused, daemon(), CreateUndo::yes);
  scheduler.advance(1.0);
  startup.reset();
  scheduler.advance(60.0);
  EXPECT_EQ(requests("move"), 0);
}

// Quitting

TEST_F(ItemActionsTest, quitAsksEveryInstanceAndLooksAgainLater) {
  workspace.add(1, SharedText("Acme"), SharedText("com.acme.agent"));
  workspace.add(2, SharedText("Other"), SharedText("com.other"));
  workspace.add(3, SharedText("Acme"), SharedText("com.acme.agent"));
  addMine();
  const int started = background.started;
  startup->quit(agent());
  EXPECT_EQ(workspace.terminated, (std::vector<std::int32_t>{1, 3}));
  scheduler.advance(0.79);
  EXPECT_FALSE(startup->isScanning.get());
  scheduler.advance(0.01);
  EXPECT_TRUE(startup->isScanning.get());
  settle();
  EXPECT_GT(background.started, started);
  EXPECT_TRUE(agent().isEnabled);
  EXPECT_EQ(at(mine), "/opt/acme");
}

TEST_F(ItemActionsTest, quitOfWhatCannotBeAskedIsLeftToTheUser) {
  workspace.add(1, SharedText("Acme"), SharedText("com.acme.agent"));
  workspace.add(2, SharedText("Acme"), SharedText("com.acme.agent"));
  addMine();
  startup->quit(agent());
  EXPECT_EQ(startup->helperUnavailable.get(), std::nullopt);
  settle();
  workspace.refusing = {1};
  startup->quit(agent());
  EXPECT_EQ(startup->helperUnavailable.get(),
            (HelperUnavailable{agent().displayName, calendar.now(), Reason::closedByHand}));
  EXPECT_EQ(workspace.terminated, (std::vector<std::int32_t>{1, 2, 1, 2}));
  scheduler.advance(0.8);
  EXPECT_TRUE(startup->isScanning.get());
}

TEST_F(ItemActionsTest, quitOfWhatDoesNotRunDoesNothing) {
  addMine();
  startup->quit(agent());
  scheduler.advance(5.0);
  EXPECT_TRUE(workspace.terminated.empty());
  EXPECT_EQ(background.started, 2);
}

TEST_F(ItemActionsTest, quitOfAnApplicationThatHasGoneStillLooksAgain) {
  workspace.add(1, SharedText("Acme"), SharedText("com.acme.agent"));
  addMine();
  workspace.remove(1);
  startup->quit(agent());
  EXPECT_TRUE(workspace.terminated.empty());
  settle();
  EXPECT_EQ(agent().runningAppBundleID, std::nullopt);
}

// All at once

TEST_F(ItemActionsTest, pausingAllUpdatersLeavesNoUndo) {
  for (const char* id : {"org.mozilla.updater", "com.brave.Updater"})
    files.add("/home/kim/Library/LaunchAgents/" + std::string(id) + ".plist");
  addMine();
  startup->pauseAllUpdaters();
  settle();
  EXPECT_EQ(startup->pendingUndo.get(), std::nullopt);
  EXPECT_FALSE(item("org.mozilla.updater").isEnabled);
  EXPECT_FALSE(item("com.brave.Updater").isEnabled);
  EXPECT_TRUE(agent().isEnabled);
  EXPECT_TRUE(startup->updaterItems().empty());
}

TEST_F(ItemActionsTest, removingAllLeftoversKeepsTheirFilesOnDisk) {
  files.add("/home/kim/Library/LaunchAgents/com.a.gone.plist", "/opt/a");
  files.add("/home/kim/Library/LaunchAgents/com.b.gone.plist", "/opt/b");
  addMine();
  startup->removeAllLeftovers();
  scheduler.advance(30.0);
  EXPECT_EQ(startup->pendingUndo.get(), std::nullopt);
  EXPECT_EQ(startup->items->size(), 1u);
  EXPECT_EQ(at("/home/kim/Library/LaunchAgents/com.a.gone.plist.vorli-removed"), "/opt/a");
  EXPECT_EQ(at("/home/kim/Library/LaunchAgents/com.b.gone.plist.vorli-removed"), "/opt/b");
}

}  // namespace
}  // namespace vorli
