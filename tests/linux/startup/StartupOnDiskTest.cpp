#include "tests/linux/startup/StartupOnDiskFixture.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <set>
#include <string>
#include <sys/stat.h>

namespace vorli::linuxhost {
namespace {

namespace fs = std::filesystem;

using NameSet = std::set<std::string>;

struct StartupOnDiskTest : StartupOnDiskFixture {
  // Tests each unit alone, so that no other unit starts it or prevents its start.
  void expectManagerFollows(UnitManager manager, const NameSet& names) {
    EXPECT_EQ(startedByManager(manager), names);
    for (const auto& name : names) {
      auto others = names;
      others.erase(name);
      set(Enablement::paused, unitIdentifier(name, manager));
      EXPECT_EQ(startedByManager(manager), others) << name << " is paused";
      set(Enablement::enabled, unitIdentifier(name, manager));
    }
    EXPECT_EQ(startedByManager(manager), names);
  }
};

TEST_F(StartupOnDiskTest, aPausedEntryOfTheUsersDoesNotStart) {
  entry("home/.config/autostart/acme.desktop");
  const NameSet started{"app-acme@autostart.service"};
  EXPECT_EQ(startedAtLogin(), started);
  set(Enablement::paused, "acme");
  EXPECT_EQ(startedAtLogin(), NameSet());
  set(Enablement::enabled, "acme");
  EXPECT_EQ(startedAtLogin(), started);
  expectPauseAndResume("acme");
}

TEST_F(StartupOnDiskTest, aResumedEntryIsTheSameFile) {
  entry("home/.config/autostart/acme.desktop");
  const auto seen = item("acme").firstSeenAt;
  const auto inode = fileStatus("home/.config/autostart/acme.desktop").st_ino;
  if (seen) defaults.values[StartupItemService::lastVisitKey] = *seen;
  set(Enablement::paused, "acme");
  EXPECT_EQ(fileStatus("home/.config/autostart/acme.desktop.vorli-disabled").st_mode & 07777u, 0640u);
  set(Enablement::enabled, "acme");
  EXPECT_EQ(fileStatus("home/.config/autostart/acme.desktop").st_ino, inode);
  EXPECT_EQ(item("acme").firstSeenAt, seen);
  EXPECT_FALSE(item("acme").isNewSinceLastVisit);
}

TEST_F(StartupOnDiskTest, aPausedOverrideDoesNotUncoverTheSystemsEntry) {
  entry("home/.config/autostart/acme.desktop", "X-Mine=1\n");
  entry("etc/xdg/autostart/acme.desktop");
  set(Enablement::paused, "acme");
  EXPECT_EQ(startedAtLogin(), NameSet());
  set(Enablement::enabled, "acme");
  expectPauseAndResume("acme");
}

TEST_F(StartupOnDiskTest, aPausedEntryOfTheSystemsDoesNotStartForThisUser) {
  entry("etc/xdg/autostart/acme.desktop");
  const auto before = startedAtLogin();
  EXPECT_EQ(before.size(), 1u);
  set(Enablement::paused, "acme");
  EXPECT_EQ(startedAtLogin(), NameSet());
  set(Enablement::enabled, "acme");
  EXPECT_EQ(startedAtLogin(), before);
  expectPauseAndResume("acme");
}

TEST_F(StartupOnDiskTest, anEntrySwitchedOffByTheDesktopIsSwitchedOnByEnable) {
  entry("home/.config/autostart/acme.desktop", "Hidden=true\n");
  EXPECT_FALSE(item("acme").isEnabled);
  EXPECT_EQ(startedAtLogin(), NameSet());
  set(Enablement::enabled, "acme");
  EXPECT_EQ(startedAtLogin().size(), 1u);

  entry("etc/xdg/autostart/tea.desktop");
  tree.write("home/.config/autostart/tea.desktop", "[Desktop Entry]\nHidden=true\n");
  EXPECT_FALSE(item("tea").isEnabled);
  set(Enablement::enabled, "tea");
  EXPECT_TRUE(item("tea").isEnabled);
  EXPECT_EQ(startedAtLogin().size(), 2u);
}

TEST_F(StartupOnDiskTest, aRemovedEntryDoesNotStart) {
  entry("home/.config/autostart/acme.desktop");
  entry("etc/xdg/autostart/tea.desktop");
  const auto before = snapshot();
  for (const char* id : {"acme", "tea"}) {
    items.service.remove(item(id), StartupItemService::CreateUndo::yes);
    settle();
  }
  EXPECT_EQ(startedAtLogin(), NameSet());
  for (const char* file : {"home/.config/autostart/acme.desktop", "etc/xdg/autostart/tea.desktop"}) {
    StartupItemService::UndoAction action;
    action.removedFromURL = path(file);
    items.service.undoRemove(action);
    settle();
  }
  EXPECT_EQ(snapshot(), before);
  EXPECT_EQ(startedAtLogin().size(), 2u);
}

TEST_F(StartupOnDiskTest, unitsOfEachKindAreRestoredUnchanged) {
  unit("home/.config/systemd/user", "mine.service", "home/.config/systemd/user");
  unit("etc/systemd/user", "shared.service", "etc/systemd/user");
  unit("usr/lib/systemd/user", "packaged.service", "etc/systemd/user");
  unit("etc/systemd/system", "local.service", "etc/systemd/system");
  unit("usr/lib/systemd/system", "daemon.service", "etc/systemd/system");
  tree.write("usr/lib/systemd/user/mine.service", "[Service]\nExecStart=/bin/false\n");
  for (const char* id : {"mine.service", "shared.service", "packaged.service", "local.service@system",
                         "daemon.service@system"})
    expectPauseAndResume(id);
}

TEST_F(StartupOnDiskTest, theUsersManagerStartsNoPausedUnit) {
  unit("home/.config/systemd/user", "mine.service", "home/.config/systemd/user");
  unit("home/.config/systemd/user", "over.service", "home/.config/systemd/user");
  tree.write("usr/lib/systemd/user/over.service", "[Service]\nExecStart=/bin/false\n");
  unit("etc/systemd/user", "shared.service", "etc/systemd/user");
  unit("usr/lib/systemd/user", "packaged.service", "etc/systemd/user");
  tree.write("usr/lib/systemd/user/tea@.service", "[Service]\nExecStart=/bin/true\n");
  fs::create_symlink("/nowhere/tea@.service",
                     tree.path("home/.config/systemd/user/default.target.wants/tea@one.service"));
  expectManagerFollows(UnitManager::user, {"mine.service", "over.service", "packaged.service",
                                           "shared.service", "tea@one.service"});
}

TEST_F(StartupOnDiskTest, theSystemsManagerStartsNoPausedUnit) {
  unit("etc/systemd/system", "local.service", "etc/systemd/system");
  unit("usr/lib/systemd/system", "daemon.service", "etc/systemd/system");
  expectManagerFollows(UnitManager::system, {"daemon.service", "local.service"});
}

TEST_F(StartupOnDiskTest, aLinkToNothingDoesNotKeepTheSystemsEntryFromStarting) {
  entry("etc/xdg/autostart/acme.desktop");
  fs::create_directories(tree.path("home/.config/autostart"));
  fs::create_symlink("/nowhere", tree.path("home/.config/autostart/acme.desktop"));
  EXPECT_EQ(startedAtLogin().size(), 1u);
  expectPauseAndResume("acme");
  set(Enablement::paused, "acme");
  EXPECT_EQ(startedAtLogin(), NameSet());
}

TEST_F(StartupOnDiskTest, pausingALinkLeavesItsTargetUntouched) {
  entry("home/dotfiles/acme.desktop");
  fs::create_directories(tree.path("home/.config/autostart"));
  fs::create_symlink(path("home/dotfiles/acme.desktop"), tree.path("home/.config/autostart/acme.desktop"));
  EXPECT_EQ(startedAtLogin().size(), 1u);
  set(Enablement::paused, "acme");
  EXPECT_EQ(startedAtLogin(), NameSet());
  set(Enablement::enabled, "acme");
  expectPauseAndResume("acme");
  entry("etc/xdg/autostart/acme.desktop");
  set(Enablement::paused, "acme");
  EXPECT_EQ(startedAtLogin(), NameSet());
  set(Enablement::enabled, "acme");
  expectPauseAndResume("acme");
}

}  // namespace
}  // namespace vorli::linuxhost
