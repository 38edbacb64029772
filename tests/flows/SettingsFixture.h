#pragma once

#include "flows/VorliSettingsView.h"
#include "tests/fakes/FakeHost.h"
#include "tests/fakes/Publish.h"

#include <optional>
#include <string>

namespace vorli {

/// The settings on a host made of fakes.
struct SettingsFixture : testing::Test, fakes::FakeHost {
  SettingsFixture() {
    updates.source = "a key";
    addresses = {"https://feedback.example", "https://maker.example"};
  }

  NotificationCenter notifications;
  AppSettings settings{defaults};
  Diagnostics diagnostics{{files, logQueue, calendar, bundle, system, crashes, fileViewer},
                          {"/home/test/logs", "/home/test/crashes"}};
  HelperManager helperManager{scheduler, helperService, helperTransport, bundle};
  std::optional<UpdaterManager> updaterManager;
  GlobalHotkeyManager hotkeyManager{scheduler, hotkeys};
  std::optional<VorliSettingsView> view;

  VorliSettingsView& make(HostSystem system = HostSystem::linuxDesktop) {
    updaterManager.emplace(
        UpdaterManagerNeeds{scheduler, calendar, defaults, updates, [](const std::string&) {}});
    view.emplace(
        SettingsServices{scheduler, notifications, settings, helperManager, *updaterManager, hotkeyManager,
                         diagnostics, keys, links, application, bundle, motion, workspace, addresses},
        system);
    return *view;
  }
  void setHelper(InstallStatus status) { fakes::publish(helperManager.status, status); }
};

}  // namespace vorli
