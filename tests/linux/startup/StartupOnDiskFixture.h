#pragma once

#include "linux/startup/InstalledApplications.h"
#include "startup/StartupItems.h"
#include "startup/UnitIdentifier.h"
#include "tests/fakes/Announcements.h"
#include "tests/fakes/BackgroundWork.h"
#include "tests/fakes/CalendarClock.h"
#include "tests/fakes/KeyValueStore.h"
#include "tests/fakes/LaunchControl.h"
#include "tests/fakes/ProcessUsage.h"
#include "tests/fakes/StartupSettings.h"
#include "tests/fakes/SystemStartupLists.h"
#include "tests/fakes/SystemUnits.h"
#include "tests/fakes/TextOrder.h"
#include "tests/fakes/Workspace.h"
#include "tests/helper/HelperFixture.h"
#include "tests/linux/RecordedTree.h"
#include "tests/linux/startup/FaultyStartupFiles.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <sys/stat.h>
#include <sys/types.h>
#include <system_error>
#include <tuple>
#include <unistd.h>
#include <utility>

namespace vorli::linuxhost {

/// The startup items over real files in a private folder.
struct StartupOnDiskFixture : HelperFixture {
  /// Everything about a file that a session or its user could notice: whether it is the same file, its mode
  /// and modification time, and its content or target.
  using Snapshot = std::map<std::string, std::tuple<ino_t, mode_t, time_t, long, std::string>>;

  StartupOnDiskFixture() {
    transport.moveLaunchAgentPlist.answer = {0, ""};
    transport.whenAnswered = [this](const std::string& request) { moveAsHelper(request); };
    units.whenCalled = [this](const std::string& call) { maskAsManager(call); };
  }

  ports::StartupPlaces placesHere() const {
    using enum ports::UnitFolder::Owner;
    ports::StartupPlaces here;
    here.home = path("home");
    here.autostart = {path("home/.config/autostart"), {path("etc/xdg/autostart")}};
    here.desktops = {"XFCE"};
    here.programFolders = {"/usr/bin"};
    here.userUnits = {{path("home/.config/systemd/user"), user},
                      {path("etc/systemd/user"), administrator},
                      {path("usr/lib/systemd/user"), package}};
    here.systemUnits = {{path("etc/systemd/system"), administrator},
                        {path("usr/lib/systemd/system"), package}};
    return here;
  }
  std::string path(const std::string& name) const { return tree.path(name).string(); }
  void entry(const std::string& file, const std::string& more = "") const {
    tree.write(file,
               "# written by hand\n[Desktop Entry]\nType=Application\nName=Acme\nExec=/bin/true\n" + more);
    chmod(path(file).c_str(), 0640);
    const timespec times[]{{1000, 5}, {2000, 7}};
    utimensat(AT_FDCWD, path(file).c_str(), times, 0);
  }
  void unit(const std::string& folder, const std::string& name, const std::string& wants) const {
    tree.write(folder + "/" + name, "[Unit]\nDescription=Acme\n[Service]\nExecStart=/bin/true\n");
    std::filesystem::create_directories(tree.path(wants + "/default.target.wants"));
    std::filesystem::create_symlink("/nowhere/" + name, tree.path(wants + "/default.target.wants/" + name));
  }

  struct stat fileStatus(const std::string& file) const {
    struct stat info {};
    EXPECT_EQ(lstat(path(file).c_str(), &info), 0) << file;
    return info;
  }
  Snapshot snapshot() const {
    Snapshot all;
    for (const auto& file : std::filesystem::recursive_directory_iterator(tree.root())) {
      struct stat info {};
      lstat(file.path().c_str(), &info);
      if (S_ISDIR(info.st_mode)) continue;
      std::ifstream in(file.path());
      auto content = file.is_symlink() ? std::filesystem::read_symlink(file.path()).string()
                                       : std::string(std::istreambuf_iterator(in), {});
      all[file.path().string()] = {info.st_ino, info.st_mode, info.st_mtim.tv_sec, info.st_mtim.tv_nsec,
                                   std::move(content)};
    }
    return all;
  }

  /// Runs a command, which must succeed, and returns what it printed.
  static std::string run(const std::string& command) {
    FILE* output = popen(command.c_str(), "r");
    std::array<char, 256> line;
    std::string said;
    while (output && fgets(line.data(), line.size(), output)) said += line.data();
    EXPECT_EQ(output ? pclose(output) : -1, 0) << said;
    return said;
  }

  /// Exactly those services that the real service manager would start from the units here.
  std::set<std::string> startedByManager(UnitManager manager) const {
    const bool isUsers = manager == UnitManager::user;
    const auto& folders = isUsers ? places.userUnits : places.systemUnits;
    // The others are what every service needs.
    for (const char* target : {"default", "basic", "sysinit"})
      tree.write(std::string("usr/lib/systemd/") + (isUsers ? "user/" : "system/") + target + ".target",
                 "[Unit]\n");
    std::string search;
    for (const auto& folder : folders) search += (search.empty() ? "" : ":") + folder.path;
    std::filesystem::create_directories(tree.path("run"));
    // The manager refuses this test as root, and the other user must be able to read the files.
    run("chmod -R a+rX " + tree.root() + " && chmod 0777 " + path("run"));
    const std::string asNobody = geteuid() == 0 ? "setpriv --reuid=65534 --regid=65534 --clear-groups " : "";
    std::istringstream plan(
        run("env -i PATH=/usr/bin:/bin HOME=" + path("home") + " XDG_RUNTIME_DIR=" + path("run") +
            " SYSTEMD_UNIT_PATH=" + search + " " + asNobody + "/usr/lib/systemd/systemd --test " +
            (isUsers ? "--user" : "--system") + " --unit=default.target --no-pager --log-target=null 2>&1"));
    std::set<std::string> names;
    for (std::string word, name, arrow, verb; plan >> word;)
      if (word == "Action:" && plan >> name >> arrow >> verb && verb == "start" && name.ends_with(".service"))
        names.insert(name);
    tree.remove("run");
    return names;
  }

  /// Entries that the generator of the real service manager would start at the next login.
  std::set<std::string> startedAtLogin() const {
    for (const char* folder : {"normal", "early", "late"}) {
      tree.remove(std::string("run/") + folder);
      std::filesystem::create_directories(tree.path(std::string("run/") + folder));
    }
    run("env HOME=" + path("home") + " XDG_CONFIG_HOME=" + path("home/.config") +
        " XDG_CONFIG_DIRS=" + path("etc/xdg") + " XDG_CURRENT_DESKTOP=XFCE SYSTEMD_LOG_LEVEL=err " +
        "/usr/lib/systemd/user-generators/systemd-xdg-autostart-generator " + path("run/normal") + " " +
        path("run/early") + " " + path("run/late") + " 2>&1");
    std::set<std::string> names;
    const auto wants = tree.path("run/late/xdg-desktop-autostart.target.wants");
    if (std::filesystem::exists(wants))
      for (const auto& link : std::filesystem::directory_iterator(wants))
        names.insert(link.path().filename().string());
    tree.remove("run");
    return names;
  }

  void settle() { scheduler.advance(3.0); }
  StartupItem item(const std::string& id) {
    items.service.refresh();
    settle();
    const auto& all = items.service.items.get();
    const auto found = std::ranges::find(all, id, &StartupItem::id);
    EXPECT_NE(found, all.end()) << id;
    return found == all.end() ? StartupItem() : *found;
  }
  void set(Enablement to, const std::string& id) {
    items.service.setEnabled(to, item(id), StartupItemService::CreateUndo::no);
    settle();
  }
  void expectPauseAndResume(const std::string& id) {
    const auto before = snapshot();
    set(Enablement::paused, id);
    EXPECT_FALSE(item(id).isEnabled) << id;
    set(Enablement::enabled, id);
    EXPECT_TRUE(item(id).isEnabled) << id;
    EXPECT_EQ(snapshot(), before) << id;
  }

  void moveAsHelper(const std::string& request) {
    std::istringstream words(request);
    std::string method, from, to;
    words >> method >> from >> to;
    if (method != "moveLaunchAgentPlist") return;
    const bool isMoved = files.real.moveWithoutReplacing(from, to) == ports::MoveResult::moved;
    transport.moveLaunchAgentPlist.answer = {isMoved ? 0 : 3, ""};
  }
  void maskAsManager(const std::string& call) const {
    const auto name = tree.path("etc/systemd/system/" + call.substr(call.find(' ') + 1));
    std::error_code inUse;  // the manager replaces no file
    if (call.starts_with("mask")) {
      std::filesystem::create_directories(name.parent_path());
      std::filesystem::create_symlink("/dev/null", name, inUse);
    } else if (std::filesystem::is_symlink(name) || std::filesystem::file_size(name, inUse) == 0) {
      std::filesystem::remove(name);
    }
  }

  RecordedTree tree;
  FaultyStartupFiles files;
  InstalledApplications applications{{{path("home/applications")}, {"/usr/bin"}, {}}};
  fakes::ProcessUsage usage;
  fakes::TextOrder textOrder;
  fakes::LaunchControl launchControl;
  fakes::SystemUnits units;
  fakes::SystemStartupLists lists;
  fakes::StartupSettings settings;
  fakes::Announcements announcements;
  fakes::Workspace workspace;
  fakes::KeyValueStore defaults;
  fakes::CalendarClock calendar{scheduler};
  fakes::BackgroundWork background{scheduler};
  const ports::StartupPlaces places = placesHere();
  StartupItems items{{scheduler, calendar, defaults, workspace, *manager},
                     {files, applications, usage, launchControl, units, lists, settings, textOrder,
                      announcements, background, places},
                     HostSystem::linuxDesktop};
};

}  // namespace vorli::linuxhost
