#include "flows/VorliSettingsTab.h"
#include "flows/VorliSettingsView.h"

#include <gtest/gtest.h>
// The fixture needs the test library before it.
#include "tests/fakes/Publish.h"
#include "tests/flows/SettingsFixture.h"

#include <algorithm>
#include <set>
#include <string>
#include <vector>

namespace vorli {
namespace {

using Tab = VorliSettingsTab;
using Case = InstallStatus::Case;
using HelperRow = VorliSettingsView::HelperRow;
using Strings = std::vector<std::string>;

struct VorliSettingsViewTest : SettingsFixture {
  Strings rows(Tab tab) {
    Strings lines;
    for (const auto& group : view->groups(tab)) {
      lines.push_back("[" + std::string(group.title) + "]");
      for (const auto& row : group.switches)
        lines.push_back(std::string(row.title) + " | " + std::string(row.subtitle) + " | " +
                        std::string(row.symbol));
    }
    return lines;
  }
};

TEST_F(VorliSettingsViewTest, tabsHaveTheirWordsOnEachSystem) {
  const auto line = [](Tab tab, HostSystem system) {
    const auto& texts = textsOf(tab, system);
    return std::string(texts.rawName) + " | " + std::string(texts.label) + " | " + std::string(texts.symbol) +
           " | " + std::string(texts.subtitle);
  };
  EXPECT_EQ(line(Tab::general, HostSystem::macOS),
            "general | General | gearshape | How Vorli behaves on your Mac.");
  EXPECT_EQ(line(Tab::general, HostSystem::linuxDesktop),
            "general | General | gearshape | How Vorli behaves on your computer.");
  for (const auto system : {HostSystem::macOS, HostSystem::linuxDesktop}) {
    EXPECT_EQ(line(Tab::sneakyApps, system),
              "sneakyApps | Sneaky Apps | eyes | Apps running in the background without you opening them.");
    EXPECT_EQ(line(Tab::notifications, system),
              "notifications | Notifications | bell | When and how Vorli taps you on the shoulder.");
    EXPECT_EQ(line(Tab::screen, system),
              "screen | Screen | display | Ambient cues that live on the screen itself.");
    EXPECT_EQ(line(Tab::community, system),
              "community | Community | bubble.left | Places Vorli lives outside this window.");
    EXPECT_EQ(line(Tab::about, system),
              "about | About | info.circle | Version, updates, and the small print.");
  }
  EXPECT_EQ(textsOf(Tab::sneakyApps).accessibilityLabel(), "Sneaky Apps tab");
  EXPECT_EQ(textsOf(Tab::sneakyApps).accessibilityHint(), "Switches to the Sneaky Apps settings");
}

TEST_F(VorliSettingsViewTest, rowsOfMacOS) {
  make(HostSystem::macOS);
  EXPECT_EQ(
      rows(Tab::general),
      (Strings{"[Startup]", "Launch at login | Open Vorli when you sign in. | power", "[Polish]",
               "Auto‑polish | Polish your Mac when memory runs tight. | wand.and.stars",
               "Quit hidden apps on Polish | Asks background apps to quit too. | rectangle.stack.badge.minus",
               "[Shortcut]", "[Feedback]", "Haptic feedback | A soft tap on every polish. | hand.tap"}));
  EXPECT_EQ(rows(Tab::notifications),
            (Strings{"[Nudges]", "Gentle nudges | A quiet hint when your Mac is full. | bell",
                     "Stay quiet during Focus | Silent while a Focus is active. | moon.stars"}));
  EXPECT_EQ(rows(Tab::screen),
            (Strings{"[Edge glow]", "Soft edge glow | A warm glow once your Mac fills up. | display"}));
}

TEST_F(VorliSettingsViewTest, onlyALinuxDesktopLetsTheUserChooseTheDialsPanel) {
  make(HostSystem::macOS);
  for (const auto& group : view->groups(Tab::screen)) EXPECT_TRUE(group.choices.empty());
  make(HostSystem::linuxDesktop);
  const auto group = view->groups(Tab::screen).at(1);
  EXPECT_EQ(group.title, "Dial");
  const auto& choice = group.choices.at(0);
  EXPECT_EQ(choice.title, "Dial on a light or dark panel");
  EXPECT_EQ(choice.subtitle, "Auto takes the panel's own colours.");
  EXPECT_EQ(choice.chosen(), 0u);
  settings.dialPanel.set("dark");
  EXPECT_EQ(choice.chosen(), 2u);
  settings.dialPanel.set("purple");
  EXPECT_EQ(choice.chosen(), 0u);
}

TEST_F(VorliSettingsViewTest, quittingHiddenAppsIsUnavailableWhereADesktopHidesItsWindows) {
  workspace.windowOwners = std::nullopt;
  make(HostSystem::linuxDesktop);
  EXPECT_EQ(rows(Tab::general)[4],
            "Quit hidden apps on Polish | This desktop doesn't tell Vorli which windows are hidden. | "
            "rectangle.stack.badge.minus");
  EXPECT_FALSE(view->groups(Tab::general)[1].switches[1].isAvailable);
  workspace.windowOwners.emplace();
  EXPECT_TRUE(view->groups(Tab::general)[1].switches[1].isAvailable);
}

TEST_F(VorliSettingsViewTest, rowsOfALinuxDesktop) {
  make();
  EXPECT_EQ(rows(Tab::general)[3],
            "Auto‑polish | Polish your computer when memory runs tight. | wand.and.stars");
  EXPECT_EQ(rows(Tab::notifications),
            (Strings{"[Nudges]", "Gentle nudges | A quiet hint when your computer is full. | bell",
                     "Stay quiet with Do Not Disturb | Silent while notifications are off. | moon.stars"}));
  EXPECT_EQ(rows(Tab::screen)[1], "Soft edge glow | A warm glow once your computer fills up. | display");
}

TEST_F(VorliSettingsViewTest, linuxTextsNameNothingThatOnlyAMacHas) {
  make();
  std::string all;
  for (const Tab tab : vorliSettingsTabs) {
    all += textsOf(tab, HostSystem::linuxDesktop).subtitle;
    for (const auto& row : rows(tab)) all += row;
  }
  for (const auto status :
       {InstallStatus(Case::notRegistered), InstallStatus(Case::requiresApproval),
        InstallStatus(Case::enabled), InstallStatus(Case::notFound), InstallStatus::unknown(7)}) {
    setHelper(status);
    all += view->helperRow().text;
  }
  setHelper(Case::enabled);
  fakes::publish(helperManager.isOtherBuildInstalled, true);
  all += view->helperRow().text;
  for (const char* word : {"Mac", "macOS", "System Settings", "Login Items", "Focus", "bundle", "Finder"})
    EXPECT_EQ(all.find(word), std::string::npos) << word;
}

TEST_F(VorliSettingsViewTest, eachSwitchHasASettingOfItsOwn) {
  make();
  std::set<const void*> bound;
  std::size_t switches = 0;
  for (const Tab tab : vorliSettingsTabs) {
    for (const auto& group : view->groups(tab)) {
      for (const auto& row : group.switches) {
        bound.insert(&row.setting);
        ++switches;
      }
    }
  }
  EXPECT_EQ(switches, 7U);
  EXPECT_EQ(bound.size(), 7U);
  EXPECT_EQ(&view->groups(Tab::screen)[0].switches[0].setting, &settings.edgeGlow);
}

TEST_F(VorliSettingsViewTest, notificationChangesTheTabAndAnUnknownNameDoesNot) {
  make();
  EXPECT_EQ(view->selectedTab.get(), Tab::general);
  notifications.post(SwitchVorliSettingsTab{"sneakyApps"});
  EXPECT_EQ(view->selectedTab.get(), Tab::sneakyApps);
  notifications.post(SwitchVorliSettingsTab{"SneakyApps"});
  EXPECT_EQ(view->selectedTab.get(), Tab::sneakyApps);
}

TEST_F(VorliSettingsViewTest, helperRowOfEachStatusOnALinuxDesktop) {
  make();
  const std::string running =
      "Running. Press Reinstall if Vorli is having trouble removing or pausing system items.";
  setHelper(Case::notRegistered);
  EXPECT_EQ(view->helperRow(), (HelperRow{"Not installed yet.", "lock.shield", HelperRow::Tone::plain,
                                          HelperRow::Button::none}));
  setHelper(InstallStatus::unknown(7));
  EXPECT_EQ(view->helperRow(), (HelperRow{"Status unknown (7)", "lock.shield", HelperRow::Tone::plain,
                                          HelperRow::Button::none}));
  setHelper(Case::requiresApproval);
  EXPECT_EQ(view->helperRow(), (HelperRow{"Approve Vorli's helper with your password.", "lock.shield",
                                          HelperRow::Tone::amber, HelperRow::Button::none}));
  setHelper(Case::enabled);
  EXPECT_EQ(view->helperRow(),
            (HelperRow{running, "checkmark.seal", HelperRow::Tone::lit, HelperRow::Button::reinstall}));
  setHelper(Case::notFound);
  EXPECT_EQ(view->helperRow(), (HelperRow{"Helper missing. Try Reinstall.", "box.missing",
                                          HelperRow::Tone::red, HelperRow::Button::reinstall}));
  fakes::publish(helperManager.isInstalling, true);
  EXPECT_EQ(view->helperRow(),
            (HelperRow{"Setting up the helper…", "", HelperRow::Tone::plain, HelperRow::Button::none}));
}

TEST_F(VorliSettingsViewTest, helperOfAnotherBuildIsShownUntilItIsReplaced) {
  make();
  setHelper(Case::enabled);
  int changes = 0;
  const auto watching = view->subscribe([&changes] { ++changes; });
  fakes::publish(helperManager.isOtherBuildInstalled, true);
  EXPECT_EQ(changes, 1);
  EXPECT_EQ(view->helperRow(),
            (HelperRow{"This helper is from another build of Vorli. Press Reinstall to replace it.",
                       "arrow.triangle.2.circlepath", HelperRow::Tone::amber, HelperRow::Button::reinstall}));
  fakes::publish(helperManager.isOtherBuildInstalled, false);
  EXPECT_EQ(changes, 2);
  EXPECT_EQ(view->helperRow().symbol, "checkmark.seal");
}

TEST_F(VorliSettingsViewTest, anotherBuildIsNotMentionedWhileTheHelperCannotBeUsed) {
  make();
  fakes::publish(helperManager.isOtherBuildInstalled, true);
  setHelper(Case::requiresApproval);
  EXPECT_EQ(view->helperRow().text, "Approve Vorli's helper with your password.");
  setHelper(Case::enabled);
  fakes::publish(helperManager.isInstalling, true);
  EXPECT_EQ(view->helperRow().text, "Setting up the helper…");
}

TEST_F(VorliSettingsViewTest, helperRowNamesThePlacesOfMacOS) {
  make(HostSystem::macOS);
  setHelper(Case::requiresApproval);
  EXPECT_EQ(view->helperRow().text, "Approve Vorli in System Settings → Login Items.");
  setHelper(Case::notFound);
  EXPECT_EQ(view->helperRow().text, "Helper bundle missing. Try Reinstall.");
}

TEST_F(VorliSettingsViewTest, secondPressOfReinstallStartsNoSecondRepair) {
  make();
  setHelper(Case::enabled);
  view->reinstallHelper();
  view->reinstallHelper();
  EXPECT_EQ(view->helperRow().button, HelperRow::Button::reinstalling);
  scheduler.advance(60.0);
  EXPECT_EQ(view->helperRow().button, HelperRow::Button::reinstall);
  EXPECT_EQ(std::ranges::count(helperService.calls, "unregister"), 1);
}

TEST_F(VorliSettingsViewTest, subscribersLearnOfTheEndOfAReinstall) {
  make();
  setHelper(Case::enabled);
  view->reinstallHelper();
  auto shown = view->helperRow().button;
  EXPECT_EQ(shown, HelperRow::Button::reinstalling);
  const auto watching = view->subscribe([this, &shown] { shown = view->helperRow().button; });
  scheduler.advance(60.0);
  EXPECT_EQ(shown, HelperRow::Button::reinstall);
}

TEST_F(VorliSettingsViewTest, subscribersLearnOfTheArrivalOfUpdates) {
  updates.source = std::nullopt;
  make();
  int changes = 0;
  const auto watching = view->subscribe([&changes] { ++changes; });
  fakes::publish(updaterManager->isConfigured, true);
  EXPECT_EQ(changes, 1);
}

TEST_F(VorliSettingsViewTest, subscribersLearnOfTheStartOfAnInstallation) {
  make();
  int changes = 0;
  const auto watching = view->subscribe([&changes] { ++changes; });
  fakes::publish(helperManager.isInstalling, true);
  EXPECT_EQ(changes, 1);
}

TEST_F(VorliSettingsViewTest, subscribersLearnOfChangesOfTheHelperAndTheHotKey) {
  make();
  int changes = 0;
  const auto watching = view->subscribe([&changes] { ++changes; });
  setHelper(Case::notFound);
  EXPECT_EQ(changes, 1);
  hotkeyManager.registerCombo("opt+↑", [] {});
  EXPECT_GE(changes, 2);
}

TEST_F(VorliSettingsViewTest, refusedHotKeyIsMentionedInItsRow) {
  make();
  hotkeyManager.registerCombo("opt+shift+C", [] {});
  EXPECT_FALSE(view->isHotkeyRefused());
  EXPECT_EQ(view->hotkeySubtitle(), "Summon Vorli from any app.");
  hotkeys.status = -9878;
  hotkeyManager.registerCombo("opt+shift+C", [] {});
  EXPECT_TRUE(view->isHotkeyRefused());
  EXPECT_EQ(view->hotkeySubtitle(), "Another app already uses this one. Press to record another.");
  hotkeyManager.registerCombo("opt+↑", [] {});
  EXPECT_EQ(view->hotkeySubtitle(), "This one can't be used everywhere. Press to record another.");
}

TEST_F(VorliSettingsViewTest, declinedHotKeyIsNotReportedAsTaken) {
  make(HostSystem::linuxDesktop);
  hotkeyManager.registerCombo("opt+shift+C", [] {});
  hotkeys.changeLater(ports::hotkeyDeclined);
  EXPECT_TRUE(view->isHotkeyRefused());
  EXPECT_EQ(view->hotkeySubtitle(), "Your desktop didn't allow this one. Press to record another.");
}

TEST_F(VorliSettingsViewTest, desktopWithoutGlobalHotKeysSaysSo) {
  make(HostSystem::linuxDesktop);
  hotkeys.status = ports::hotkeyUnavailable;
  hotkeyManager.registerCombo("opt+shift+C", [] {});
  EXPECT_TRUE(view->isHotkeyRefused());
  EXPECT_EQ(view->hotkeySubtitle(), "This desktop has no global hotkeys.");
}

TEST_F(VorliSettingsViewTest, absentHotKeyIsNotReportedAsRefused) {
  make();
  settings.globalHotkeyCombo.set("");
  hotkeyManager.registerCombo("", [] {});
  EXPECT_FALSE(view->isHotkeyRefused());
}

TEST_F(VorliSettingsViewTest, unsetAddressesAreNotOffered) {
  for (const char* address : {"", "REPLACE_WITH_FEEDBACK_PAGE"}) {
    addresses = {address, address};
    make();
    EXPECT_FALSE(view->offersFeedback());
    EXPECT_FALSE(view->offersMakerSite());
  }
  addresses = {"https://feedback.example", "https://maker.example"};
  make();
  view->giveFeedback();
  view->openMakerSite();
  EXPECT_EQ(links.opened, (Strings{"https://feedback.example", "https://maker.example"}));
}

TEST_F(VorliSettingsViewTest, updatesAreOfferedWhenTheyAreConfigured) {
  updates.source = std::nullopt;
  EXPECT_FALSE(make().offersUpdates());
  updates.source = "key";
  EXPECT_TRUE(make().offersUpdates());
}

TEST_F(VorliSettingsViewTest, quitEndsTheProgram) {
  make().quit();
  EXPECT_EQ(application.terminations, 1);
}

}  // namespace
}  // namespace vorli
