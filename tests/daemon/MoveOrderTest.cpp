#include "daemon/MoveOrder.h"

#include <string>
#include <tuple>

namespace vorli::daemon {
namespace {

const std::string autostart = "/etc/xdg/autostart/";
const std::string systemUnits = "/etc/systemd/system/";
const std::string userUnits = "/etc/systemd/user/";

std::int32_t codeOf(const std::string& from, const std::string& to) {
  const auto order = decodeMove(from, to);
  return order ? 0 : order.error().exitCode;
}

TEST(MoveOrder, allowsTheFourTransitionsOfADesktopEntry) {
  for (const std::string extension : {".vorli-disabled", ".vorli-removed"}) {
    const auto away = decodeMove(autostart + "a.desktop", autostart + "a.desktop" + extension);
    ASSERT_TRUE(away);
    EXPECT_EQ(away->direction, MoveOrder::Direction::putAway);
    EXPECT_EQ(away->fromName, "a.desktop");
    EXPECT_EQ(away->toName, "a.desktop" + extension);
    EXPECT_EQ(away->folder->path, "/etc/xdg/autostart");

    const auto back = decodeMove(autostart + "a.desktop" + extension, autostart + "a.desktop");
    ASSERT_TRUE(back);
    EXPECT_EQ(back->direction, MoveOrder::Direction::bringBack);
    EXPECT_EQ(back->fromName, "a.desktop" + extension);
  }
}

TEST(MoveOrder, allowsEachKindOfUnitInBothUnitFolders) {
  for (const auto& folder : {systemUnits, userUnits})
    for (const std::string suffix : {".service", ".timer", ".socket", ".path"})
      EXPECT_EQ(codeOf(folder + "x" + suffix, folder + "x" + suffix + ".vorli-disabled"), 0)
          << folder << suffix;
}

TEST(MoveOrder, allowsUnusualNamesOfUnits) {
  EXPECT_EQ(codeOf(systemUnits + "dev-disk\\x2dby@0:1+a_b.path",
                   systemUnits + "dev-disk\\x2dby@0:1+a_b.path.vorli-removed"),
            0);
}

TEST(MoveOrder, refusesOtherTransitions) {
  const std::string plain = autostart + "a.desktop";
  const std::pair<std::string, std::string> pairs[] = {
      {plain, plain},
      {plain + ".vorli-disabled", plain + ".vorli-removed"},
      {plain + ".vorli-removed", plain + ".vorli-disabled"},
      {plain, autostart + "b.desktop.vorli-disabled"},
      {plain, plain + ".bak"},
      {plain, plain + ".vorli-disabled.vorli-disabled"},
      {plain, plain + ".vorli-disabledx"},
      {plain, autostart + "a.vorli-disabled"},
      {plain + ".vorli-disabled", plain + ".vorli-disabled.vorli-removed"},
      {autostart + "a.txt", autostart + "a.txt.vorli-disabled"},
      {autostart + "a.service", autostart + "a.service.vorli-disabled"},
      {systemUnits + "a.desktop", systemUnits + "a.desktop.vorli-disabled"},
      {systemUnits + "a.mount", systemUnits + "a.mount.vorli-disabled"},
      {autostart + "A.DESKTOP", autostart + "A.DESKTOP.vorli-disabled"},
  };
  for (const auto& [from, to] : pairs) EXPECT_EQ(codeOf(from, to), 1) << from << " -> " << to;
}

TEST(MoveOrder, refusesFoldersThatAreNotListedAndMovesBetweenFolders) {
  const std::string name = "a.service";
  for (const std::string folder :
       {"/etc/", "/usr/lib/systemd/system/", "/etc/systemd/system/multi-user.target.wants/", "/etc/xdg/",
        "/etc/systemd/system/../user/", "/etc/systemd//system/", "/etc/systemd/system//",
        "/etc/systemd/./system/", "//etc/systemd/system/", "/ETC/systemd/system/", "/etc/systemd/system\n/",
        "/root/"})
    EXPECT_EQ(codeOf(folder + name, folder + name + ".vorli-disabled"), 1) << folder;
  EXPECT_EQ(codeOf(systemUnits + name, userUnits + name + ".vorli-disabled"), 1);
}

TEST(MoveOrder, refusesImproperNames) {
  for (const std::string name : {"", ".", "..", ".hidden.desktop", "a b.desktop", "a\n.desktop",
                                 "a\x1b[2J.desktop", "\xc3\xa4.desktop", "a*.desktop", "a;b.desktop",
                                 "$(x).desktop", "~.desktop", "a%20.desktop", "a'.desktop", "a\".desktop"})
    EXPECT_EQ(codeOf(autostart + name, autostart + name + ".vorli-disabled"), 22) << name;
  const std::string embeddedNull("a\0.desktop", 10);
  EXPECT_EQ(codeOf(autostart + embeddedNull, autostart + embeddedNull + ".vorli-disabled"), 22);
}

TEST(MoveOrder, refusesANameThatIsOnlyASuffix) {
  EXPECT_EQ(codeOf(systemUnits + ".service", systemUnits + ".service.vorli-disabled"), 22);
}

TEST(MoveOrder, allowsOnlyPropertyListsOfTheTwoLaunchFoldersOnMacOS) {
  const auto codeOnMacOS = [](const std::string& path) {
    const auto order = decodeMove(path, path + ".vorli-removed", HostSystem::macOS);
    return order ? 0 : order.error().exitCode;
  };
  EXPECT_EQ(codeOnMacOS("/Library/LaunchAgents/com.example.a.plist"), 0);
  EXPECT_EQ(codeOnMacOS("/Library/LaunchDaemons/com.example.a.plist"), 0);
  for (const std::string path : {"/System/Library/LaunchDaemons/a.plist", "/Library/LaunchDaemons/a.service",
                                 "/Library/LaunchDaemons/a.PLIST", "/Library/StartupItems/a.plist",
                                 "/library/LaunchAgents/a.plist", "/etc/xdg/autostart/a.desktop"})
    EXPECT_EQ(codeOnMacOS(path), 1) << path;
}

TEST(MoveOrder, refusesTheLaunchFoldersOfMacOSOnLinux) {
  const std::string path = "/Library/LaunchDaemons/a.plist";
  const auto order = decodeMove(path, path + ".vorli-disabled", HostSystem::linuxDesktop);
  ASSERT_FALSE(order);
  EXPECT_EQ(order.error().exitCode, 1);
}

TEST(MoveOrder, refusesPathsThatAreNotAbsolute) {
  for (const std::string path :
       {"", "a.desktop", "etc/xdg/autostart/a.desktop", "/", "/a.desktop", "./a.desktop"})
    EXPECT_NE(codeOf(path, path + ".vorli-disabled"), 0) << path;
}

TEST(MoveOrder, allowsNamesOfUpToTwoHundredBytes) {
  const std::string extension = ".vorli-disabled";
  const std::string longest = std::string(200 - extension.size() - 8, 'a') + ".desktop";
  EXPECT_EQ(codeOf(autostart + longest, autostart + longest + extension), 0);
  EXPECT_EQ(codeOf(autostart + "a" + longest, autostart + "a" + longest + extension), 22);
}

}  // namespace
}  // namespace vorli::daemon
