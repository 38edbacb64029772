#pragma once

#include "ports/LaunchControl.h"
#include "ports/StartupFiles.h"
#include "startup/AutostartEntries.h"
#include "startup/StartupControl.h"
#include "startup/WorkQueue.h"

#include <string>

namespace vorli {

/// Base of the controls of entries that a session starts.
class AutostartControl : public StartupControl {
 public:
  AutostartControl(ports::StartupFiles& files, ports::LaunchControl& launchControl, WorkQueue& worker,
                   AutostartFolders folders);

 protected:
  ports::StartupFiles& files_;
  ports::LaunchControl& launchControl_;
  WorkQueue& worker_;
  const AutostartFolders folders_;
};

/// Entries in the user's autostart folder. A paused one is marked as hidden, because some sessions start
/// every file of the folder, and then renamed like other items. An entry that overrides one of the system's
/// keeps its name: without it, the system's would start.
class UserAutostartControl final : public AutostartControl {
 public:
  using AutostartControl::AutostartControl;

  Task<Outcome> setEnabled(Enablement to, std::string plistURL) override;
  Task<Outcome> remove(std::string plistURL) override;
  Task<Outcome> undoRemove(std::string plistURL) override;
  Task<> commitRemoval(std::string plistURL) override;
};

/// Entries in the system's autostart folders. None of their files is touched: an override in the user's
/// folder pauses or removes an entry for this user alone.
class SystemAutostartControl final : public AutostartControl {
 public:
  using AutostartControl::AutostartControl;

  Task<Outcome> setEnabled(Enablement to, std::string plistURL) override;
  Task<Outcome> remove(std::string plistURL) override;
  Task<Outcome> undoRemove(std::string plistURL) override;
  /// Keeps the override, because the entry stays.
  Task<> commitRemoval(std::string plistURL) override;
};

}  // namespace vorli
