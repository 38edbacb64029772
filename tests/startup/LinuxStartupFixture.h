#pragma once

#include "startup/StartupItems.h"
#include "tests/fakes/CalendarClock.h"
#include "tests/fakes/KeyValueStore.h"
#include "tests/fakes/StartupHost.h"
#include "tests/fakes/Workspace.h"
#include "tests/helper/HelperFixture.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>

namespace vorli {

/// The startup items of a Linux desktop over fakes. A real client uses a scripted helper, which moves files
/// on the fake disk.
struct LinuxStartupFixture : HelperFixture, fakes::StartupHost {
  static constexpr const char* mine = "/home/kim/.config/autostart/";
  static constexpr const char* shared = "/etc/xdg/autostart/";
  static constexpr const char* myUnits = "/home/kim/.config/systemd/user/";
  static constexpr const char* userUnits = "/etc/systemd/user/";
  static constexpr const char* packagedUserUnits = "/usr/lib/systemd/user/";
  static constexpr const char* systemUnits = "/etc/systemd/system/";
  static constexpr const char* packagedSystemUnits = "/usr/lib/systemd/system/";

  LinuxStartupFixture() : fakes::StartupHost(HelperFixture::scheduler) {
    files.locked = {"/etc/", "/usr/"};                    // the user's rights; the helper has its own
    files.unseen = {"/usr/bin/", "/usr/sbin/", "/opt/"};  // no program is missing unless a test looks there
    transport.moveLaunchAgentPlist.answer = {0, ""};
    transport.whenAnswered = [this](const std::string& request) { moveAsHelper(request); };
    units.whenCalled = [this](const std::string& call) { maskAsManager(call); };
  }

  static ports::StartupPlaces placesOfKim() {
    using enum ports::UnitFolder::Owner;
    ports::StartupPlaces places;
    places.home = "/home/kim";
    places.autostart = {"/home/kim/.config/autostart", {"/etc/xdg/autostart"}};
    places.desktops = {"XFCE"};
    places.locales = {"de"};
    places.programFolders = {"/usr/bin"};
    places.userUnits = {{"/home/kim/.config/systemd/user", user},
                        {"/etc/systemd/user", administrator},
                        {"/usr/lib/systemd/user", package}};
    places.systemUnits = {{"/run/systemd/transient", runtime},
                          {"/etc/systemd/system", administrator},
                          {"/run/systemd/system", runtime},
                          {"/usr/lib/systemd/system", package}};
    places.initScripts = "/etc/init.d";
    return places;
  }

  ports::StartupPorts portsAt(ports::StartupPlaces here) {
    places = std::move(here);
    return ports();
  }
  static std::string entry(const std::string& name, const std::string& program,
                           const std::string& more = "") {
    return "[Desktop Entry]\nType=Application\nName=" + name + "\nExec=" + program + " --start\n" + more;
  }
  static std::string unit(const std::string& program, const std::string& description = "Acme daemon") {
    return "[Unit]\nDescription=" + description + "\n[Service]\nExecStart=" + program + "\n";
  }
  void program(const std::string& path) { files.add(path); }
  void wanted(const std::string& folder, const std::string& name, const std::string& target = "default") {
    files.addLink(folder + target + ".target.wants/" + name, "../" + name);
  }

  void settle() { scheduler.advance(3.0); }
  void scan() {
    items.service.refresh();
    settle();
  }
  const StartupItem* find(std::string_view id) const {
    const auto& all = items.service.items.get();
    const auto found = std::ranges::find(all, id, &StartupItem::id);
    return found == all.end() ? nullptr : &*found;
  }
  StartupItem item(std::string_view id) const {
    const auto* found = find(id);
    EXPECT_TRUE(found) << id;
    return found ? *found : StartupItem();
  }
  void set(Enablement to, std::string_view id) {
    items.service.setEnabled(to, item(id), StartupItemService::CreateUndo::yes);
    settle();
  }
  void pause(std::string_view id) { set(Enablement::paused, id); }
  void resume(std::string_view id) { set(Enablement::enabled, id); }

  /// Checks the contract of each way to pause: an item shows as paused, and resuming restores it exactly.
  void expectPauseAndResume(std::string_view id) {
    scan();
    ASSERT_TRUE(find(id)) << id;
    EXPECT_TRUE(item(id).isEnabled);
    const auto before = files.files;
    pause(id);
    ASSERT_TRUE(find(id)) << id << " vanished";
    EXPECT_FALSE(item(id).isEnabled) << id;
    EXPECT_NE(files.files, before);
    resume(id);
    ASSERT_TRUE(find(id)) << id;
    EXPECT_TRUE(item(id).isEnabled) << id;
    EXPECT_EQ(files.files, before) << id;
  }

  void moveAsHelper(const std::string& request) {
    std::istringstream words(request);
    std::string method, from, to;
    words >> method >> from >> to;
    if (method != "moveLaunchAgentPlist") return;
    const auto locks = std::exchange(files.locked, {});
    const bool isMoved = files.moveWithoutReplacing(from, to) == ports::MoveResult::moved;
    files.locked = locks;
    transport.moveLaunchAgentPlist.answer = {isMoved ? 0 : 3, ""};
  }

  void maskAsManager(const std::string& call) {
    if (units.answer != ports::UnitReply::done) return;
    const auto path = systemUnits + call.substr(call.find(' ') + 1);
    if (call.starts_with("mask")) {
      files.addLink(path, "/dev/null");
    } else {
      files.files.erase(path);
    }
  }

  fakes::Workspace workspace;
  fakes::KeyValueStore defaults;
  fakes::CalendarClock calendar{scheduler};
  StartupItems items{
      {scheduler, calendar, defaults, workspace, *manager}, portsAt(placesOfKim()), HostSystem::linuxDesktop};
};

}  // namespace vorli
