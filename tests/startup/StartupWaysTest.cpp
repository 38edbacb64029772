#include "startup/AutostartControls.h"
#include "startup/PlistControls.h"
#include "startup/StartupWays.h"
#include "startup/UnitControls.h"
#include "tests/fakes/StartupHost.h"
#include "tests/helper/HelperFixture.h"

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

namespace vorli {
namespace {

struct StartupWaysTest : HelperFixture {
  StartupWaysTest() {
    using enum ports::UnitFolder::Owner;
    host.places.home = "/home/kim";
    host.places.autostart = {"/home/kim/.config/autostart", {"/etc/xdg/autostart", "/opt/xdg/autostart"}};
    host.places.userUnits = {{"/home/kim/.config/systemd/user", user},
                             {"/etc/systemd/user", administrator},
                             {"/usr/lib/systemd/user", package}};
    host.places.systemUnits = {{"/etc/systemd/system", administrator}, {"/usr/lib/systemd/system", package}};
  }

  std::unique_ptr<StartupWays> waysOf(HostSystem system) {
    return startupWaysOf(system, {scheduler, host.files, host.applications, host.launchControl, host.units,
                                  host.lists, host.places, *manager, worker});
  }
  static StartupItem itemAt(const std::string& path, bool isUserWritable) {
    StartupItem item;
    item.plistURL = path;
    item.isUserWritable = isUserWritable;
    return item;
  }
  static std::vector<std::string> identifiers(StartupWays& ways) {
    std::vector<std::string> all;
    for (auto* source : ways.sources())
      for (const auto& candidate : source->candidates()) all.push_back(candidate.identifier);
    return all;
  }
  void addUnit(const std::string& folder, const std::string& name) {
    host.files.add(folder + "/" + name, "[Service]\nExecStart=/opt/acme\n");
    host.files.addLink(folder + "/default.target.wants/" + name, "../" + name);
  }
  void addOneOfEachKind() {
    host.files.add("/home/kim/.config/autostart/entry.desktop", "[Desktop Entry]\nExec=acme\n");
    addUnit("/home/kim/.config/systemd/user", "mine.service");
    addUnit("/etc/systemd/system", "daemon.service");
    host.lists.table = "@reboot /opt/command\n";
    host.files.add("/home/kim/Library/LaunchAgents/com.acme.plist", "<plist><dict></dict></plist>");
  }
  template <typename Control>
  static void expectControl(const StartupWays& ways, const std::string& path, bool isUserWritable) {
    EXPECT_TRUE(dynamic_cast<Control*>(&ways.controls().forItem(itemAt(path, isUserWritable)))) << path;
    EXPECT_TRUE(dynamic_cast<Control*>(&ways.controls().forRemoved(path))) << path;
  }

  fakes::StartupHost host{scheduler};
  WorkQueue worker{scheduler, host.background};
};

TEST_F(StartupWaysTest, linuxListsEntriesThenUnitsThenWhatTheSystemLists) {
  addOneOfEachKind();
  EXPECT_EQ(identifiers(*waysOf(HostSystem::linuxDesktop)),
            (std::vector<std::string>{"entry", "mine.service", "daemon.service@system", "command@reboot"}));
}

TEST_F(StartupWaysTest, macOSListsLaunchFoldersThenTheStore) {
  addOneOfEachKind();
  const auto ways = waysOf(HostSystem::macOS);
  EXPECT_EQ(identifiers(*ways), std::vector<std::string>{"com.acme"});
  EXPECT_EQ(ways->sources().size(), 2u);
}

TEST_F(StartupWaysTest, nothingIsReadBeforeAScan) {
  addOneOfEachKind();
  const auto here = waysOf(HostSystem::linuxDesktop), there = waysOf(HostSystem::macOS);
  EXPECT_TRUE(host.files.reads.empty());
  EXPECT_TRUE(host.files.listings.empty());
}

TEST_F(StartupWaysTest, onLinuxTheFolderChoosesTheControl) {
  const auto ways = waysOf(HostSystem::linuxDesktop);
  for (const bool isUserWritable : {false, true}) {
    expectControl<UserAutostartControl>(*ways, "/home/kim/.config/autostart/a.desktop", isUserWritable);
    expectControl<SystemAutostartControl>(*ways, "/etc/xdg/autostart/a.desktop", isUserWritable);
    expectControl<SystemAutostartControl>(*ways, "/opt/xdg/autostart/a.desktop", isUserWritable);
    for (const auto& folder : host.places.userUnits)
      expectControl<UserUnitControl>(*ways, folder.path + "/a.service", isUserWritable);
    for (const auto& folder : host.places.systemUnits)
      expectControl<SystemUnitControl>(*ways, folder.path + "/a.service", isUserWritable);
  }
}

TEST_F(StartupWaysTest, onMacOSTheItemChoosesTheControl) {
  const auto ways = waysOf(HostSystem::macOS);
  expectControl<UserPlistControl>(*ways, "/home/kim/Library/LaunchAgents/a.plist", true);
  expectControl<HelperPlistControl>(*ways, "/Library/LaunchAgents/a.plist", false);
  expectControl<HelperPlistControl>(*ways, "/Library/LaunchDaemons/a.plist", false);
}

TEST_F(StartupWaysTest, aHostWithoutPlacesHasNoItems) {
  host.places = {};
  host.files.add("/autostart/a.desktop", "[Desktop Entry]\nExec=acme\n");
  EXPECT_TRUE(identifiers(*waysOf(HostSystem::linuxDesktop)).empty());
}

}  // namespace
}  // namespace vorli
