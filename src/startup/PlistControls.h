#pragma once

#include "base/Task.h"
#include "helper/HelperManager.h"
#include "ports/LaunchControl.h"
#include "ports/StartupFiles.h"
#include "startup/StartupControl.h"
#include "startup/WorkQueue.h"

#include <string>

namespace vorli {

/// Base of the controls that rename an item's file while it is paused or removed.
class PlistControl : public StartupControl {
 public:
  /// Runs with the user's own rights: a file removed from a system folder stays there, under a name that
  /// every scan ignores.
  Task<> commitRemoval(std::string plistURL) override;

 protected:
  PlistControl(ports::StartupFiles& files, WorkQueue& worker) : files_(files), worker_(worker) {}

  static std::string pausedName(const std::string& plistURL);
  static std::string removedName(const std::string& plistURL);

  ports::StartupFiles& files_;
  WorkQueue& worker_;
};

/// Launch jobs of the user: the program moves their files itself, and loads or unloads the jobs in the
/// service manager.
class UserPlistControl final : public PlistControl {
 public:
  UserPlistControl(ports::StartupFiles& files, ports::LaunchControl& launchControl, WorkQueue& worker)
      : PlistControl(files, worker), launchControl_(launchControl) {}

  Task<Outcome> setEnabled(Enablement to, std::string plistURL) override;
  Task<Outcome> remove(std::string plistURL) override;
  /// Does not load the job again: it starts at the next login.
  Task<Outcome> undoRemove(std::string plistURL) override;

 private:
  ports::LaunchControl& launchControl_;
};

/// Launch jobs of the system: the helper moves their files.
class HelperPlistControl final : public PlistControl {
 public:
  HelperPlistControl(ports::StartupFiles& files, HelperManager& helperManager, WorkQueue& worker)
      : PlistControl(files, worker), helperManager_(helperManager) {}

  Task<Outcome> setEnabled(Enablement to, std::string plistURL) override;
  Task<Outcome> remove(std::string plistURL) override;
  Task<Outcome> undoRemove(std::string plistURL) override;

 private:
  /// Moves the file. If that fails, repairs the helper and tries once more.
  Task<Outcome> move(std::string from, std::string to);

  HelperManager& helperManager_;
};

}  // namespace vorli
