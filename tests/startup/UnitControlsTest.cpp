#include "tests/startup/LinuxStartupFixture.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace vorli {
namespace {

struct UnitControlsTest : LinuxStartupFixture {
  void addLink(const std::string& path) {
    files.files[path] = {
        .content = unit("/opt/acme/run"), .birth = std::nullopt, .link = "/opt/acme/acme.service"};
  }
  void resumeOrBringBack(bool isRemoval) {
    if (!isRemoval) return resume("acme.service@system");
    items.service.undoRemove(*items.service.pendingUndo.get());
    settle();
  }
};

TEST_F(UnitControlsTest, aUnitThatIsALinkInEtcIsMaskedForThisUser) {
  addLink(userUnits + std::string("acme.service"));
  wanted(userUnits, "acme.service");
  expectPauseAndResume("acme.service");
  EXPECT_TRUE(transport.requests.empty());
}

TEST_F(UnitControlsTest, aUnitOfTheSystemsThatIsALinkIsLeftToTheSystemsSettings) {
  files.unseen = {};
  addLink(systemUnits + std::string("acme.service"));
  wanted(systemUnits, "acme.service");
  scan();
  EXPECT_EQ(item("acme.service@system").plistURL, std::nullopt);
  EXPECT_FALSE(item("acme.service@system").isLeftover);  // there is nothing to remove
  pause("acme.service@system");
  EXPECT_EQ(settings.openings, 1);
  EXPECT_TRUE(transport.requests.empty());
  EXPECT_TRUE(units.calls.empty());
}

TEST_F(UnitControlsTest, aPackagesUnitWithoutItsProgramIsRemovedByAMask) {
  files.unseen = {};
  files.add(packagedUserUnits + std::string("gone.service"), unit("/usr/bin/gone"));
  wanted(userUnits, "gone.service");
  scan();
  EXPECT_TRUE(item("gone.service").isLeftover);
  const auto before = files.files;
  items.service.remove(item("gone.service"), StartupItemService::CreateUndo::yes);
  settle();
  EXPECT_FALSE(find("gone.service"));
  EXPECT_EQ(files.files.at(myUnits + std::string("gone.service")).content, "");
  items.service.undoRemove(*items.service.pendingUndo.get());
  settle();
  EXPECT_EQ(files.files, before);
  EXPECT_TRUE(find("gone.service"));
}

TEST_F(UnitControlsTest, aPausedUnitOfAPackageIsStillListed) {
  files.unseen = {};
  program("/usr/bin/acme");
  files.add(packagedUserUnits + std::string("acme.service"), unit("/usr/bin/acme"));
  wanted(userUnits, "acme.service");
  expectPauseAndResume("acme.service");
}

TEST_F(UnitControlsTest, unitsMaskedByThisUserAreResumedWithoutTheHelper) {
  files.add(userUnits + std::string("acme.service"), unit("/opt/acme"));
  wanted(userUnits, "acme.service");
  files.addLink(myUnits + std::string("acme.service"), "/dev/null");
  scan();
  EXPECT_FALSE(item("acme.service").isEnabled);
  resume("acme.service");
  EXPECT_TRUE(item("acme.service").isEnabled);
  EXPECT_FALSE(files.files.contains(myUnits + std::string("acme.service")));
  EXPECT_TRUE(transport.requests.empty());
}

TEST_F(UnitControlsTest, whetherTheHelperIsNeededIsReadOnTheSecondThread) {
  files.add(userUnits + std::string("acme.service"), unit("/opt/acme/run"));
  wanted(userUnits, "acme.service");
  scan();
  files.reads.clear();
  items.service.setEnabled(Enablement::paused, item("acme.service"), StartupItemService::CreateUndo::yes);
  scheduler.runReady();
  EXPECT_TRUE(files.reads.empty());
  settle();
  EXPECT_FALSE(files.reads.empty());
  EXPECT_FALSE(item("acme.service").isEnabled);
}

TEST_F(UnitControlsTest, aMaskedTimerIsResumedItself) {
  files.add(packagedUserUnits + std::string("nightly.timer"), "[Timer]\nOnCalendar=daily\n");
  files.add(packagedUserUnits + std::string("nightly.service"), unit("/usr/bin/nightly"));
  wanted(myUnits, "nightly.timer");
  scan();
  EXPECT_TRUE(item("nightly.service").isEnabled);
  files.addLink(myUnits + std::string("nightly.timer"), "/dev/null");
  scan();
  EXPECT_FALSE(find("nightly.service"));
  EXPECT_FALSE(item("nightly.timer").isEnabled);
  resume("nightly.timer");
  EXPECT_TRUE(item("nightly.service").isEnabled);
}

TEST_F(UnitControlsTest, oneMaskedTriggerDoesNotMakeItsServicePaused) {
  files.add(packagedSystemUnits + std::string("cups.service"), unit("/usr/sbin/cupsd"));
  files.add(packagedSystemUnits + std::string("cups.path"), "[Path]\nPathExists=/x\n");
  wanted(systemUnits, "cups.service");
  wanted(systemUnits, "cups.path");
  files.addLink(systemUnits + std::string("cups.path"), "/dev/null");
  scan();
  EXPECT_TRUE(item("cups.service@system").isEnabled);
  EXPECT_FALSE(item("cups.path@system").isEnabled);
}

TEST_F(UnitControlsTest, aUnitThatWasInstalledAgainWhileItWasPausedPausesOnceMore) {
  const auto paused = myUnits + std::string("acme.service.vorli-disabled");
  files.add(myUnits + std::string("acme.service"), unit("/opt/new"));
  files.add(paused, unit("/opt/old"));
  wanted(myUnits, "acme.service");
  scan();
  EXPECT_TRUE(item("acme.service").isEnabled);
  pause("acme.service");
  EXPECT_FALSE(item("acme.service").isEnabled);
  EXPECT_EQ(files.files.at(paused).content, unit("/opt/new"));
  EXPECT_EQ(files.files.at(paused + ".1").content, unit("/opt/old"));
  resume("acme.service");
  EXPECT_EQ(files.files.at(myUnits + std::string("acme.service")).content, unit("/opt/new"));
  EXPECT_EQ(files.files.at(paused + ".1").content, unit("/opt/old"));
}

TEST_F(UnitControlsTest, aUnitOfWhichAnEarlierOneWasRemovedIsRemovedToo) {
  files.unseen = {};
  const auto removed = myUnits + std::string("acme.service.vorli-removed");
  files.add(removed, unit("/opt/old"));
  files.add(myUnits + std::string("acme.service"), unit("/opt/gone"));
  wanted(myUnits, "acme.service");
  scan();
  items.service.remove(item("acme.service"), StartupItemService::CreateUndo::yes);
  settle();
  EXPECT_FALSE(find("acme.service"));
  EXPECT_EQ(files.files.at(removed).content, unit("/opt/gone"));
  EXPECT_EQ(files.files.at(removed + ".1").content, unit("/opt/old"));
}

TEST_F(UnitControlsTest, aSecondPressOfRemoveCanBeUndoneToo) {
  files.add(myUnits + std::string("acme.service"), unit("/opt/acme"));
  wanted(myUnits, "acme.service");
  scan();
  const auto before = files.files;
  const auto row = item("acme.service");
  for (int i = 0; i < 2; ++i) items.service.remove(row, StartupItemService::CreateUndo::yes);
  settle();
  items.service.undoRemove(*items.service.pendingUndo.get());
  settle();
  EXPECT_EQ(files.files, before);
}

TEST_F(UnitControlsTest, theServiceManagerReadsItsUnitsAfterARemovalAndItsUndo) {
  files.add(myUnits + std::string("acme.service"), unit("/opt/acme"));
  wanted(myUnits, "acme.service");
  scan();
  items.service.remove(item("acme.service"), StartupItemService::CreateUndo::yes);
  settle();
  EXPECT_EQ(launchControl.calls,
            (std::vector<std::string>{"unload /home/kim/.config/systemd/user/acme.service", "reload"}));
  launchControl.calls.clear();
  items.service.undoRemove(*items.service.pendingUndo.get());
  settle();
  EXPECT_EQ(launchControl.calls, std::vector<std::string>{"reload"});
}

// The helper never replaces a file, so the pause could only fail.
TEST_F(UnitControlsTest, aUnitInEtcWhoseLongerNameIsTakenIsNotLeftToTheHelper) {
  for (const char* folder : {userUnits, systemUnits}) {
    files.add(folder + std::string("acme.service"), unit("/opt/new"));
    files.add(folder + std::string("acme.service.vorli-disabled"), unit("/opt/old"));
    wanted(folder, "acme.service");
  }
  expectPauseAndResume("acme.service");
  scan();
  EXPECT_EQ(item("acme.service@system").plistURL, std::nullopt);
  pause("acme.service@system");
  EXPECT_EQ(settings.openings, 1);
  EXPECT_TRUE(transport.requests.empty());
}

// Without the file, the service manager would make the unit from another source, which the helper refuses.
TEST_F(UnitControlsTest, aUnitInEtcThatHidesAnotherDefinitionIsNotLeftToTheHelper) {
  files.add(systemUnits + std::string("acme.service"), unit("/opt/acme"));
  files.add("/etc/init.d/acme");
  files.add(systemUnits + std::string("tea@one.service"), unit("/opt/tea"));
  files.add(packagedSystemUnits + std::string("tea@.service"), unit("/usr/bin/tea"));
  files.add(systemUnits + std::string("box.service"), unit("/opt/box"));
  files.add("/run/systemd/system/box.service", unit("/opt/box"));
  files.add(systemUnits + std::string("old.service"), unit("/opt/old"));
  files.add("/etc/init.d/old.sh");
  files.add(systemUnits + std::string("clock.service"), unit("/opt/clock"));
  files.addLink(packagedSystemUnits + std::string("clock.service"), "/dev/null");
  const std::string names[] = {"acme.service", "tea@one.service", "box.service", "old.service",
                               "clock.service"};
  for (const auto& name : names) wanted(systemUnits, name);
  scan();
  for (const auto& name : names) {
    const auto id = name + "@system";
    EXPECT_EQ(item(id).plistURL, std::nullopt) << id;
    pause(id);
    EXPECT_TRUE(item(id).isEnabled) << id;
  }
  EXPECT_EQ(settings.openings, 5);
  EXPECT_TRUE(transport.requests.empty());
}

TEST_F(UnitControlsTest, aUnitThatEtcCannotMaskIsLeftToTheSystemsSettings) {
  files.add("/run/systemd/transient/acme.service", unit("/opt/acme"));
  wanted(systemUnits, "acme.service");
  scan();
  EXPECT_EQ(item("acme.service@system").plistURL, std::nullopt);
}

TEST_F(UnitControlsTest, anEmptyFileOverAPausedUnitIsAMaskThatTheServiceManagerEnds) {
  files.add(systemUnits + std::string("acme.service.vorli-disabled"), unit("/opt/acme"));
  files.add(systemUnits + std::string("acme.service"), "");
  wanted(systemUnits, "acme.service");
  scan();
  EXPECT_FALSE(item("acme.service@system").isEnabled);
  resume("acme.service@system");
  EXPECT_EQ(units.calls, std::vector<std::string>{"unmask acme.service"});
  EXPECT_TRUE(transport.requests.empty());
  resume("acme.service@system");
  EXPECT_TRUE(item("acme.service@system").isEnabled);
  EXPECT_EQ(files.files.at(systemUnits + std::string("acme.service")).content, unit("/opt/acme"));
}

TEST_F(UnitControlsTest, enableRemovesAMaskOfTheUserAndPausingMasksAgain) {
  files.add(packagedUserUnits + std::string("acme.service"), unit("/usr/bin/acme"));
  wanted(userUnits, "acme.service");
  const auto before = files.files;
  files.addLink(myUnits + std::string("acme.service"), "/dev/null");
  scan();
  EXPECT_FALSE(item("acme.service").isEnabled);
  resume("acme.service");
  EXPECT_EQ(files.files, before);
  expectPauseAndResume("acme.service");
  EXPECT_TRUE(transport.requests.empty());
}

TEST_F(UnitControlsTest, aSystemUnitThatVanishedIsNotMasked) {
  files.add(systemUnits + std::string("acme.service"), unit("/opt/acme"));
  wanted(systemUnits, "acme.service");
  scan();
  const auto row = item("acme.service@system");
  files.files.erase(systemUnits + std::string("acme.service"));
  items.service.setEnabled(Enablement::paused, row, StartupItemService::CreateUndo::yes);
  items.service.remove(row, StartupItemService::CreateUndo::yes);
  settle();
  EXPECT_TRUE(units.calls.empty());
  EXPECT_TRUE(transport.requests.empty());
  EXPECT_FALSE(find("acme.service@system"));
}

TEST_F(UnitControlsTest, anInstanceOfATemplateInEtcIsMaskedByTheServiceManager) {
  files.add(systemUnits + std::string("tea@.service"), unit("/opt/tea"));
  wanted(systemUnits, "tea@one.service");
  expectPauseAndResume("tea@one.service@system");
  EXPECT_EQ(units.calls, (std::vector<std::string>{"mask tea@one.service", "unmask tea@one.service"}));
}

TEST_F(UnitControlsTest, whoMovesASystemUnitIsReadOnTheSecondThread) {
  files.add(systemUnits + std::string("acme.service"), unit("/opt/acme/run"));
  wanted(systemUnits, "acme.service");
  scan();
  for (const bool isRemoval : {false, true}) {
    files.reads.clear();
    files.looks = 0;
    if (isRemoval) {
      items.service.remove(item("acme.service@system"), StartupItemService::CreateUndo::yes);
    } else {
      items.service.setEnabled(Enablement::paused, item("acme.service@system"),
                               StartupItemService::CreateUndo::yes);
    }
    scheduler.runReady();
    EXPECT_TRUE(files.reads.empty());
    EXPECT_EQ(files.looks, 0);
    settle();
    EXPECT_GT(files.looks, 0);
    resumeOrBringBack(isRemoval);
  }
}

TEST_F(UnitControlsTest, anUndoWithoutThePasswordIsReportedAndCanBeRepeated) {
  files.add(packagedSystemUnits + std::string("acme.service"), unit("/opt/acme/gone"));
  wanted(systemUnits, "acme.service");
  files.unseen.clear();
  scan();
  items.service.remove(item("acme.service@system"), StartupItemService::CreateUndo::yes);
  settle();
  EXPECT_FALSE(find("acme.service@system"));
  units.answer = ports::UnitReply::refused;
  items.service.undoRemove(*items.service.pendingUndo.get());
  settle();
  EXPECT_FALSE(find("acme.service@system"));
  EXPECT_EQ(items.service.helperUnavailable.get()->reason, HelperUnavailable::Reason::declined);
  units.answer = ports::UnitReply::done;
  items.service.askAgain();
  settle();
  EXPECT_EQ(items.service.helperUnavailable.get(), std::nullopt);
  EXPECT_TRUE(find("acme.service@system"));
}

TEST_F(UnitControlsTest, aUnitOfTheUsersThatHidesNoOtherIsPausedWithoutAMask) {
  files.add(myUnits + std::string("acme.service"), unit("/opt/acme"));
  wanted(myUnits, "acme.service");
  scan();
  pause("acme.service");
  EXPECT_FALSE(files.files.contains(myUnits + std::string("acme.service")));
  EXPECT_TRUE(files.files.contains(myUnits + std::string("acme.service.vorli-disabled")));
}

TEST_F(UnitControlsTest, aRemovedUnitInEtcIsDeletedByAUserWhoMayWriteThere) {
  const auto removed = systemUnits + std::string("acme.service.vorli-removed");
  files.add(systemUnits + std::string("acme.service"), unit("/opt/acme"));
  wanted(systemUnits, "acme.service");
  scan();
  items.service.remove(item("acme.service@system"), StartupItemService::CreateUndo::yes);
  settle();
  const auto removal = *items.service.pendingUndo.get();
  items.service.commitRemoval(removal);
  settle();
  EXPECT_TRUE(files.files.contains(removed));
  files.locked.clear();
  items.service.commitRemoval(removal);
  settle();
  EXPECT_FALSE(files.files.contains(removed));
}

}  // namespace
}  // namespace vorli
