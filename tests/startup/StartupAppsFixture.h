#pragma once

#include "startup/StartupAppsView.h"
#include "tests/fakes/Announcements.h"
#include "tests/fakes/Publish.h"
#include "tests/startup/StartupFixture.h"

#include <string>
#include <utility>
#include <vector>

namespace vorli {

/// The list over the service's fakes, with the texts of either system.
struct StartupAppsFixture : StartupFixture {
  enum Asks { asking, notAsking };

  static StartupItem row(const std::string& id, Asks asks = notAsking) {
    StartupItem made;
    made.id = made.displayName = id;
    made.plistURL = "/home/kim/Library/LaunchAgents/" + id + ".plist";
    made.isUserWritable = true;
    made.requiresConfirmation = asks == asking;
    return made;
  }
  static StartupItem heavy(const std::string& id) {
    auto made = row(id);
    made.footprint = StartupItem::Footprint::heavy;
    made.isRunning = true;
    made.memoryMB = 500.0;
    return made;
  }
  static StartupItem leftover(const std::string& id) {
    auto made = row(id);
    made.isLeftover = true;
    return made;
  }
  static StartupItem updater(const std::string& id) {
    auto made = row(id);
    made.description = "Updates things.";
    return made;
  }

  void show(std::vector<StartupItem> items) {
    fakes::publish(startup->items, std::move(items));
    scheduler.runReady();
  }
  std::vector<std::string> shownIDs() const {
    std::vector<std::string> ids;
    for (const auto& section : view.sections()) {
      for (const auto& each : section.items) ids.push_back(each.id);
    }
    return ids;
  }

  fakes::Announcements announcements;
  StartupAppsServices services{scheduler, calendar, defaults, *manager, *startup, announcements};
  StartupAppsView view{services, HostSystem::macOS};
  StartupAppsView linuxView{services, HostSystem::linuxDesktop};
};

}  // namespace vorli
