#pragma once

#include "startup/PlistControls.h"
#include "startup/StartupControl.h"
#include "startup/StartupItemService.h"
#include "startup/StartupScan.h"
#include "startup/StartupSource.h"
#include "startup/WorkQueue.h"
#include "tests/fakes/BackgroundWork.h"
#include "tests/fakes/CalendarClock.h"
#include "tests/fakes/InstalledApplications.h"
#include "tests/fakes/KeyValueStore.h"
#include "tests/fakes/LaunchControl.h"
#include "tests/fakes/ProcessUsage.h"
#include "tests/fakes/StartupFiles.h"
#include "tests/fakes/StartupSettings.h"
#include "tests/fakes/TextOrder.h"
#include "tests/fakes/Workspace.h"
#include "tests/helper/HelperFixture.h"

#include <algorithm>
#include <functional>
#include <optional>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace vorli {

/// Lists the launch jobs of the fake disk by their names alone: "/…/com.acme.agent.plist" is com.acme.agent.
/// The content of a file is its program.
struct NamedFiles final : StartupSource {
  explicit NamedFiles(fakes::StartupFiles& files) : files(files) {}

  std::vector<RawCandidate> candidates() override {
    if (whenAsked) whenAsked();
    std::vector<RawCandidate> found;
    for (const auto& [path, file] : files.files) {
      for (const auto& [ending, isEnabled] : {std::pair(".plist", true), {".plist.vorli-disabled", false}}) {
        if (!path.ends_with(ending)) continue;
        const auto stem = path.substr(0, path.size() - std::string_view(ending).size());
        RawCandidate candidate{.identifier = stem.substr(stem.rfind('/') + 1)};
        if (!file.content.empty()) candidate.programPath = file.content;
        candidate.plistURL = stem + ".plist";
        candidate.plistIsUserWritable = path.starts_with("/home/");
        candidate.isEnabled = isEnabled;
        found.push_back(candidate);
      }
    }
    found.insert(found.end(), extra.begin(), extra.end());
    return found;
  }

  fakes::StartupFiles& files;
  std::vector<RawCandidate> extra;
  std::function<void()> whenAsked;
};

/// The service over fakes. A real client uses a scripted helper, which moves files on the fake disk.
struct StartupFixture : HelperFixture {
  using CreateUndo = StartupItemService::CreateUndo;

  static constexpr const char* mine = "/home/kim/Library/LaunchAgents/com.acme.agent.plist";
  static constexpr const char* systems = "/Library/LaunchDaemons/com.acme.daemon.plist";

  StartupFixture() {
    files.locked = {"/Library/"};  // the user's rights; the helper has its own
    transport.moveLaunchAgentPlist.answer = {0, ""};
  }

  /// Changes the disk as an honest helper does when it answers a request.
  std::function<void(const std::string&)> moveAsHelper() {
    return [this](const std::string& request) {
      std::istringstream words(request);
      std::string method, from, to;
      words >> method >> from >> to;
      if (method != "moveLaunchAgentPlist") return;
      const auto locks = std::exchange(files.locked, {});
      const auto result = files.moveWithoutReplacing(from, to);
      files.locked = locks;
      const bool isMoved = result == ports::MoveResult::moved;
      transport.moveLaunchAgentPlist.answer = {isMoved ? 0 : 3, ""};
    };
  }

  /// Waits for the end of a scan or an action that nothing prevents.
  void settle() { scheduler.advance(2.0); }
  void scan() {
    startup->refresh();
    settle();
  }

  StartupItem item(const std::string& id) const {
    const auto& items = startup->items.get();
    const auto found = std::ranges::find(items, id, &StartupItem::id);
    EXPECT_NE(found, items.end()) << id;
    return found == items.end() ? StartupItem() : *found;
  }
  bool isListed(const std::string& id) const {
    return std::ranges::count(startup->items.get(), id, &StartupItem::id) > 0;
  }
  std::vector<std::string> paths() const {
    std::vector<std::string> result;
    for (const auto& [path, file] : files.files) result.push_back(path);
    return result;
  }
  int requests(std::string_view start) const {
    return static_cast<int>(
        std::ranges::count_if(transport.requests, [&](auto& each) { return each.starts_with(start); }));
  }

  fakes::StartupFiles files;
  fakes::InstalledApplications applications;
  fakes::ProcessUsage usage;
  fakes::TextOrder textOrder;
  fakes::LaunchControl launchControl;
  fakes::Workspace workspace;
  fakes::KeyValueStore defaults;
  fakes::StartupSettings settings;
  fakes::CalendarClock calendar{scheduler};
  fakes::BackgroundWork background{scheduler};
  NamedFiles source{files};
  StartupScan startupScan{{files, applications, usage, textOrder}, {&source}};
  WorkQueue worker{scheduler, background};
  UserPlistControl ofUser{files, launchControl, worker};
  HelperPlistControl ofHelper{files, *manager, worker};
  StartupControls controls{ofUser, ofHelper, StartupControls::macOSHelperFolders};
  std::optional<StartupItemService> startup{
      std::in_place,
      StartupServices{scheduler, calendar, defaults, workspace, settings, startupScan, controls, worker}};
};

}  // namespace vorli
