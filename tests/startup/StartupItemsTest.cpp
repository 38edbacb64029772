#include "tests/startup/LinuxStartupFixture.h"

#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <utility>

namespace vorli {
namespace {

using StartupItemsTest = LinuxStartupFixture;

TEST_F(StartupItemsTest, readsNothingBeforeTheListAppears) {
  files.add(mine + std::string("acme.desktop"), entry("Acme", "acme"));
  settle();
  EXPECT_TRUE(files.reads.empty());
  items.view.appear();
  settle();
  EXPECT_TRUE(find("acme"));
}

TEST_F(StartupItemsTest, anEntryOfTheUsersPausesUnderItsLongerNameAndComesBackAsItWas) {
  files.add(mine + std::string("acme.desktop"), entry("Acme", "acme"), Date{1000.0});
  scan();
  EXPECT_EQ(item("acme").displayName, "Acme");
  EXPECT_EQ(item("acme").source, StartupItem::Source::userLinked);
  EXPECT_TRUE(item("acme").isUserWritable);
  expectPauseAndResume("acme");

  pause("acme");
  EXPECT_FALSE(files.files.contains(mine + std::string("acme.desktop")));
  const auto& paused = files.files.at(mine + std::string("acme.desktop.vorli-disabled")).content;
  EXPECT_TRUE(
      paused.starts_with("[Desktop Entry]\nHidden=true\nX-Vorli-Paused=true\nX-Vorli-FirstSeen=1000\n"));
}

TEST_F(StartupItemsTest, anEntryThatOverridesTheSystemsPausesInItsPlace) {
  files.add(mine + std::string("acme.desktop"), entry("My Acme", "acme"));
  files.add(shared + std::string("acme.desktop"), entry("Acme", "acme"));
  expectPauseAndResume("acme");
  pause("acme");
  EXPECT_TRUE(files.files.at(mine + std::string("acme.desktop")).content.contains("Hidden=true"));
}

TEST_F(StartupItemsTest, anEntryOfTheSystemsPausesByAnOverrideAndNoFileOfItsIsTouched) {
  files.add(shared + std::string("acme.desktop"), entry("Acme", "acme"));
  expectPauseAndResume("acme");
  const auto before = files.files.at(shared + std::string("acme.desktop"));
  pause("acme");
  EXPECT_EQ(files.files.at(shared + std::string("acme.desktop")), before);
  EXPECT_TRUE(files.files.contains(mine + std::string("acme.desktop")));
  EXPECT_EQ(item("acme").displayName, "Acme");
  EXPECT_EQ(item("acme").plistURL, shared + std::string("acme.desktop"));
  EXPECT_EQ(transport.requests.size(), 0u);
}

TEST_F(StartupItemsTest, aUnitOfTheUsersPausesByItsNameAndKeepsItsLinks) {
  files.add(myUnits + std::string("acme.service"), unit("/opt/acme"));
  wanted(myUnits, "acme.service");
  expectPauseAndResume("acme.service");
  EXPECT_EQ(launchControl.calls,
            (std::vector<std::string>{"unload /home/kim/.config/systemd/user/acme.service", "reload",
                                      "reload", "load /home/kim/.config/systemd/user/acme.service"}));
}

TEST_F(StartupItemsTest, aUnitOfTheUsersThatOverridesAPackagesIsMaskedWhileItIsPaused) {
  files.add(myUnits + std::string("acme.service"), unit("/opt/acme"));
  files.add(packagedUserUnits + std::string("acme.service"), unit("/usr/bin/acme"));
  wanted(myUnits, "acme.service");
  expectPauseAndResume("acme.service");
  pause("acme.service");
  EXPECT_EQ(files.files.at(myUnits + std::string("acme.service")).content, "");
  EXPECT_TRUE(files.files.contains(myUnits + std::string("acme.service.vorli-disabled")));
}

TEST_F(StartupItemsTest, aUnitThatAPackageGaveToAllUsersIsMaskedForThisUser) {
  files.add(packagedUserUnits + std::string("acme.service"), unit("/usr/bin/acme"));
  wanted(userUnits, "acme.service");
  expectPauseAndResume("acme.service");
  EXPECT_EQ(transport.requests.size(), 0u);
}

TEST_F(StartupItemsTest, anInstanceOfATemplateIsMaskedByItsOwnName) {
  files.add(packagedUserUnits + std::string("acme@.service"), unit("/usr/bin/acme"));
  wanted(myUnits, "acme@one.service");
  wanted(myUnits, "acme@two.service");
  expectPauseAndResume("acme@one.service");
  pause("acme@one.service");
  EXPECT_TRUE(item("acme@two.service").isEnabled);
}

TEST_F(StartupItemsTest, filesInEtcAreMovedByTheHelper) {
  files.add(userUnits + std::string("shared.service"), unit("/opt/shared"));
  wanted(userUnits, "shared.service");
  files.add(systemUnits + std::string("acme.service"), unit("/opt/acme"));
  wanted(systemUnits, "acme.service", "multi-user");
  expectPauseAndResume("shared.service");
  expectPauseAndResume("acme.service@system");
  EXPECT_TRUE(units.calls.empty());
  EXPECT_FALSE(item("acme.service@system").isUserWritable);
}

TEST_F(StartupItemsTest, anEnabledUnitOfAPackageIsMaskedByTheServiceManager) {
  files.add(packagedSystemUnits + std::string("acme.service"), unit("/usr/sbin/acme"));
  wanted(systemUnits, "acme.service", "multi-user");
  expectPauseAndResume("acme.service@system");
  EXPECT_EQ(units.calls, (std::vector<std::string>{"mask acme.service", "unmask acme.service"}));
  EXPECT_EQ(transport.requests.size(), 0u);
}

TEST_F(StartupItemsTest, aRefusedPasswordRevertsThePause) {
  files.add(packagedSystemUnits + std::string("acme.service"), unit("/usr/sbin/acme"));
  wanted(systemUnits, "acme.service", "multi-user");
  scan();
  units.answer = ports::UnitReply::refused;
  pause("acme.service@system");
  EXPECT_TRUE(item("acme.service@system").isEnabled);
  ASSERT_TRUE(items.service.helperUnavailable.get());
  EXPECT_EQ(items.service.helperUnavailable.get()->reason, HelperUnavailable::Reason::declined);
  EXPECT_FALSE(items.service.pendingUndo.get());
  units.answer = ports::UnitReply::unavailable;
  pause("acme.service@system");
  EXPECT_EQ(items.service.helperUnavailable.get()->reason, HelperUnavailable::Reason::notResponding);
}

TEST_F(StartupItemsTest, askingAgainRepeatsTheActionThatWasRefused) {
  files.add(packagedSystemUnits + std::string("acme.service"), unit("/usr/sbin/acme"));
  wanted(systemUnits, "acme.service", "multi-user");
  items.view.appear();
  settle();
  units.answer = ports::UnitReply::refused;
  pause("acme.service@system");
  ASSERT_TRUE(items.view.helperToast());
  units.answer = ports::UnitReply::done;
  items.view.helperToastPressed();
  settle();
  EXPECT_EQ(units.calls, (std::vector<std::string>{"mask acme.service", "mask acme.service"}));
  EXPECT_FALSE(item("acme.service@system").isEnabled);
  EXPECT_TRUE(items.service.pendingUndo.get());
  EXPECT_FALSE(items.view.helperToast());
  items.service.askAgain();
  settle();
  EXPECT_EQ(units.calls.size(), 2u);
}

TEST_F(StartupItemsTest, itemsListedByTheSystemAreShownAndOpenItsSettings) {
  lists.table = "@reboot sleep 5 && /home/kim/bin/tea.sh\n";
  lists.permissions = {{"org.acme.Allowed", true}, {"org.acme.Forbidden", false}};
  scan();
  EXPECT_EQ(item("tea.sh@reboot").displayName, "tea");
  EXPECT_FALSE(item("tea.sh@reboot").plistURL);
  EXPECT_TRUE(item("org.acme.Allowed").isEnabled);
  EXPECT_FALSE(item("org.acme.Forbidden").isEnabled);
  const auto before = files.files;
  pause("tea.sh@reboot");
  EXPECT_EQ(settings.openings, 1);
  EXPECT_EQ(files.files, before);
}

TEST_F(StartupItemsTest, aCommandAndAnEntryOfTheSameNameAreTwoItems) {
  lists.table = "@reboot /opt/tea\n";
  files.add(mine + std::string("tea.desktop"), entry("Tea", "/opt/tea"));
  scan();
  EXPECT_EQ(items.service.items->size(), 2u);
  pause("tea");
  EXPECT_FALSE(item("tea").isEnabled);
  EXPECT_TRUE(item("tea@reboot").isEnabled);
}

TEST_F(StartupItemsTest, aCommandFindsItsApplication) {
  applications.install("/usr/share/applications/tea.desktop", "tea", "Tea Time");
  lists.table = "@reboot /usr/bin/tea --hidden\n";
  workspace.add(42, SharedText("Tea Time"), SharedText("tea"));
  scan();
  EXPECT_EQ(item("tea@reboot").displayName, "Tea Time");
  EXPECT_EQ(item("tea@reboot").bundleID, "tea");
  EXPECT_EQ(item("tea@reboot").runningAppBundleID, "tea");
}

TEST_F(StartupItemsTest, onlyUndoRestoresRemovedEntries) {
  files.unseen = {};  // no such program
  files.add(mine + std::string("acme.desktop"), entry("Acme", "/opt/acme"));
  files.add(shared + std::string("tea.desktop"), entry("Tea", "/opt/tea"));
  files.add(myUnits + std::string("box.service"), unit("/opt/box"));
  wanted(myUnits, "box.service");
  scan();
  for (const char* id : {"acme", "tea", "box.service"}) {
    const auto before = files.files;
    items.service.remove(item(id), StartupItemService::CreateUndo::yes);
    settle();
    EXPECT_FALSE(find(id)) << id;
    items.service.undoRemove(*items.service.pendingUndo.get());
    settle();
    EXPECT_TRUE(find(id)) << id;
    EXPECT_EQ(files.files, before) << id;
  }
  for (const char* id : {"acme", "box.service"}) {
    items.service.remove(item(id), StartupItemService::CreateUndo::yes);
    settle();
    items.service.commitRemoval(*items.service.pendingUndo.get());
    settle();
  }
  EXPECT_FALSE(files.files.contains(mine + std::string("acme.desktop.vorli-removed")));
  EXPECT_FALSE(files.files.contains(myUnits + std::string("box.service.vorli-removed")));
}

TEST_F(StartupItemsTest, removingAnEntryThatOverridesTheSystemsStartsNeither) {
  files.unseen = {};
  files.add(mine + std::string("acme.desktop"), entry("My Acme", "/opt/acme"));
  files.add(shared + std::string("acme.desktop"), entry("Acme", "/opt/acme"));
  scan();
  const auto before = files.files;
  items.service.remove(item("acme"), StartupItemService::CreateUndo::yes);
  settle();
  EXPECT_FALSE(find("acme"));
  EXPECT_TRUE(files.files.at(mine + std::string("acme.desktop")).content.contains("Hidden=true"));
  items.service.undoRemove(*items.service.pendingUndo.get());
  settle();
  EXPECT_EQ(files.files, before);
}

TEST_F(StartupItemsTest, aServiceOfTheUsersQuitsAndOneOfTheSystemsDoesNot) {
  files.add(myUnits + std::string("acme.service"), unit("/opt/acme"));
  wanted(myUnits, "acme.service");
  files.add(packagedSystemUnits + std::string("box.service"), unit("/usr/sbin/box"));
  wanted(systemUnits, "box.service");
  usage.serviceRows = {{"acme.service", 6.0, 100.0, true}, {"box.service", 0.0, 200.0, false}};
  scan();
  EXPECT_TRUE(item("acme.service").isRunning);
  EXPECT_EQ(item("acme.service").footprint, StartupItem::Footprint::heavy);
  EXPECT_EQ(item("acme.service").runningAppBundleID, "acme.service");
  EXPECT_EQ(item("box.service@system").footprint, StartupItem::Footprint::medium);
  EXPECT_FALSE(item("box.service@system").runningAppBundleID);
  const auto before = files.files;
  items.service.quit(item("acme.service"));
  items.service.quit(item("box.service@system"));
  settle();
  EXPECT_EQ(launchControl.calls,
            (std::vector<std::string>{"unload /home/kim/.config/systemd/user/acme.service"}));
  EXPECT_EQ(files.files, before);
}

TEST_F(StartupItemsTest, aUnitOfTheUsersAndOneOfTheSystemsWithTheSameNameAreTwoItems) {
  files.add(packagedUserUnits + std::string("mpd.service"), unit("/usr/bin/mpd"));
  wanted(myUnits, "mpd.service");
  files.add(packagedSystemUnits + std::string("mpd.service"), unit("/usr/bin/mpd"));
  wanted(systemUnits, "mpd.service");
  usage.serviceRows = {{"mpd.service", 6.0, 100.0, false}};
  scan();
  EXPECT_EQ(items.service.items->size(), 2u);
  EXPECT_FALSE(item("mpd.service").isRunning);
  EXPECT_TRUE(item("mpd.service@system").isRunning);
  pause("mpd.service");
  EXPECT_TRUE(item("mpd.service@system").isEnabled);
  EXPECT_TRUE(units.calls.empty());
  resume("mpd.service");
  expectPauseAndResume("mpd.service@system");
}

TEST_F(StartupItemsTest, nothingThatKeepsTheSessionAliveIsOffered) {
  files.add(shared + std::string("xfce4-power-manager.desktop"),
            entry("Power", "/usr/bin/xfce4-power-manager"));
  files.add(shared + std::string("part.desktop"), entry("Part", "part", "X-GNOME-Autostart-Phase=Panel\n"));
  files.add(shared + std::string("com.kv.vorli.desktop"), entry("Vorli", "vorli"));
  files.add(packagedUserUnits + std::string("pipewire.service"), unit("/usr/bin/pipewire"));
  wanted(userUnits, "pipewire.service");
  scan();
  EXPECT_TRUE(items.service.items->empty());
  EXPECT_EQ(items.service.hiddenSystemCount, 4);
}

TEST_F(StartupItemsTest, aThirdPartysItemIsNeverHidden) {
  files.add(shared + std::string("xfce4-acme.desktop"), entry("Acme", "/opt/acme/run"));
  files.add(systemUnits + std::string("systemd-acme.service"), unit("/usr/bin/acme"));
  wanted(systemUnits, "systemd-acme.service");
  files.add(mine + std::string("xdg-mine.desktop"), entry("Mine", "mine"));
  scan();
  EXPECT_TRUE(find("xfce4-acme"));
  EXPECT_TRUE(find("systemd-acme.service@system"));
  EXPECT_TRUE(find("xdg-mine"));
  EXPECT_EQ(items.service.hiddenSystemCount, 0);
}

TEST_F(StartupItemsTest, macOSKeepsItsOwnWays) {
  ports::StartupPlaces atHome;
  atHome.home = "/home/kim";
  StartupItems onMac{
      {scheduler, calendar, defaults, workspace, *manager}, portsAt(atHome), HostSystem::macOS};
  files.add("/home/kim/Library/LaunchAgents/com.acme.plist",
            "<plist><dict><key>Program</key><string>/opt/acme</string></dict></plist>");
  files.add(mine + std::string("tea.desktop"), entry("Tea", "tea"));
  onMac.service.refresh();
  settle();
  ASSERT_EQ(onMac.service.items->size(), 1u);
  EXPECT_EQ(onMac.service.items->front().id, "com.acme");
}

TEST_F(StartupItemsTest, aScanInProgressEndsBeforeItsSourcesAreDestroyed) {
  files.add(mine + std::string("acme.desktop"), entry("Acme", "acme"));
  std::optional<StartupItems> leaving(std::in_place,
                                      StartupSurroundings{scheduler, calendar, defaults, workspace, *manager},
                                      portsAt(placesOfKim()), HostSystem::linuxDesktop);
  leaving->service.refresh();
  scheduler.runReady();
  ASSERT_TRUE(background.isUnderWay());
  ASSERT_TRUE(files.reads.empty());
  leaving.reset();
  EXPECT_FALSE(background.isUnderWay());
  EXPECT_FALSE(files.reads.empty());
}

}  // namespace
}  // namespace vorli
