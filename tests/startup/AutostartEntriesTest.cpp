#include "startup/AutostartEntries.h"
#include "tests/startup/LinuxStartupFixture.h"

#include <gtest/gtest.h>
#include <string>

namespace vorli {
namespace {

struct AutostartEntriesTest : LinuxStartupFixture {
  void installTea() {
    applications.install("/usr/share/applications/tea.desktop", "tea", "Tea");
    applications.programs["/opt/tea"] = "/usr/share/applications/tea.desktop";
  }
};

TEST_F(AutostartEntriesTest, anEntryIsItsApplication) {
  installTea();
  files.add("/opt/tea");
  files.add(mine + std::string("start-tea.desktop"), entry("At Five", "/opt/tea"));
  scan();
  EXPECT_EQ(item("tea").displayName, "Tea");
  EXPECT_EQ(item("tea").plistURL, mine + std::string("start-tea.desktop"));
  EXPECT_EQ(item("tea").timing, StartupItem::Timing::startsWithMac);
}

TEST_F(AutostartEntriesTest, twoEntriesOfOneApplicationStayTwoItems) {
  installTea();
  files.add("/opt/tea");
  files.add(mine + std::string("a-tea.desktop"), entry("Early", "/opt/tea"));
  files.add(mine + std::string("tea.desktop"), entry("Late", "/opt/tea"));
  scan();
  EXPECT_EQ(items.service.items->size(), 2u);
  EXPECT_EQ(item("a-tea").plistURL, mine + std::string("a-tea.desktop"));
  EXPECT_EQ(item("tea").plistURL, mine + std::string("tea.desktop"));
  pause("a-tea");
  EXPECT_TRUE(item("tea").isEnabled);
}

TEST_F(AutostartEntriesTest, anEntryWithTheNameOfAUnitIsAnotherItem) {
  files.add(mine + std::string("tea.timer.desktop"), entry("Tea Timer", "/opt/tea"));
  files.add(myUnits + std::string("tea.timer"),
            "[Unit]\nDescription=Tea at five\n[Timer]\nUnit=none.service\n");
  wanted(myUnits, "tea.timer");
  scan();
  EXPECT_EQ(items.service.items->size(), 2u);
  EXPECT_EQ(item("tea.timer").plistURL, myUnits + std::string("tea.timer"));
  pause("tea.timer.desktop");
  EXPECT_FALSE(item("tea.timer.desktop").isEnabled);
  EXPECT_TRUE(item("tea.timer").isEnabled);
}

TEST_F(AutostartEntriesTest, anEntryWhoseApplicationHasTheNameOfAUnitIsAnotherItem) {
  applications.install("/usr/share/applications/tea.service.desktop", "tea.service", "Tea");
  applications.programs["/opt/tea"] = "/usr/share/applications/tea.service.desktop";
  files.add("/opt/tea");
  files.add(mine + std::string("start-tea.desktop"), entry("At Five", "/opt/tea"));
  files.add(myUnits + std::string("tea.service"), unit("/opt/pot"));
  wanted(myUnits, "tea.service");
  scan();
  EXPECT_EQ(item("tea.service").plistURL, myUnits + std::string("tea.service"));
  EXPECT_EQ(item("tea.service.desktop").plistURL, mine + std::string("start-tea.desktop"));
}

TEST_F(AutostartEntriesTest, anEntryWithASwitchThatThisSessionIgnoresStartsAndIsShownSo) {
  files.add(mine + std::string("tea.desktop"), entry("Tea", "/opt/tea", "X-GNOME-Autostart-enabled=false\n"));
  files.add(shared + std::string("milk.desktop"),
            entry("Milk", "/opt/milk", "X-GNOME-Autostart-enabled=false\n"));
  expectPauseAndResume("tea");
  expectPauseAndResume("milk");
}

TEST_F(AutostartEntriesTest, aUsersEntryThatCannotBeReadHidesTheSystemsOfItsName) {
  files.add(shared + std::string("tea.desktop"), entry("Tea", "/opt/tea"));
  files.addLink(mine + std::string("tea.desktop"), "/dev/null");
  files.files[mine + std::string("tea.desktop")].isRegular = false;
  scan();
  EXPECT_FALSE(item("tea").isEnabled);
}

TEST_F(AutostartEntriesTest, onlyTheEntriesOfThisDesktopAreItems) {
  files.add(mine + std::string("tea.desktop"), entry("Tea", "/opt/tea", "OnlyShowIn=KDE;\n"));
  files.add(mine + std::string("milk.desktop"), entry("Milk", "/opt/milk", "NotShowIn=XFCE;\n"));
  files.add(mine + std::string("scone.desktop"), entry("Scone", "/opt/scone", "OnlyShowIn=KDE;XFCE;\n"));
  scan();
  EXPECT_FALSE(find("tea"));
  EXPECT_FALSE(find("milk"));
  EXPECT_TRUE(find("scone"));
}

TEST_F(AutostartEntriesTest, anEntryWithoutAProgramIsNoItem) {
  files.add(mine + std::string("tea.desktop"), "[Desktop Entry]\nType=Application\nName=Tea\nExec=\n");
  files.add(mine + std::string("milk.desktop"), "[Desktop Entry]\nType=Application\nName=Milk\nExec=milk\n");
  scan();
  EXPECT_FALSE(find("tea"));
  EXPECT_TRUE(find("milk"));
}

TEST_F(AutostartEntriesTest, anEntryThatIsAddedInAnEarlierFolderCountsInTheNextScan) {
  auto here = placesOfKim();
  here.autostart.systems = {"/etc/xdg/autostart", "/usr/share/autostart"};
  AutostartEntries entries(files, applications, here);
  files.add("/usr/share/autostart/tea.desktop", entry("Tea", "/opt/tea"));
  EXPECT_EQ(entries.candidates().at(0).plistURL, "/usr/share/autostart/tea.desktop");
  files.add("/etc/xdg/autostart/tea.desktop", entry("Tea", "/opt/tea"));
  EXPECT_EQ(entries.candidates().at(0).plistURL, "/etc/xdg/autostart/tea.desktop");
}

TEST_F(AutostartEntriesTest, eachProgramIsLookedForOnce) {
  for (int i = 0; i < 20; ++i)
    files.add(mine + std::string("tea-") + std::to_string(i) + ".desktop", entry("Tea", "tea"));
  scan();
  const int looks = files.looks;
  for (int i = 20; i < 40; ++i)
    files.add(mine + std::string("tea-") + std::to_string(i) + ".desktop", entry("Tea", "tea"));
  scan();
  EXPECT_EQ(files.looks, 2 * looks);
}

}  // namespace
}  // namespace vorli
