#pragma once

#include "base/Date.h"
#include "base/Observable.h"
#include "base/Scheduler.h"
#include "base/SharedInstance.h"
#include "base/Subscription.h"
#include "base/TaskScope.h"
#include "helper/HelperManager.h"
#include "ports/Workspace.h"

#include <cstdint>
#include <map>
#include <set>
#include <string>

namespace vorli {

/// What is known of an application that stands stopped.
struct SuspendedAppInfo {
  std::string bundleID;
  std::string displayName;
  Date suspendedAt;

  bool operator==(const SuspendedAppInfo&) const = default;
};

/// Keeps the record of stopped applications, and sees to it that none stays stopped by mistake: one that the
/// user turns to goes on, and so do all before the program ends. Stops none itself. Main thread.
class SuspendedAppsManager : public SharedInstance<SuspendedAppsManager> {
 public:
  SuspendedAppsManager(Scheduler& scheduler, HelperManager& helper, ports::Workspace& workspace);

  Observable<std::set<std::int32_t>> suspendedPIDs;
  Observable<std::map<std::int32_t, SuspendedAppInfo>> suspendedInfo;

  /// Resumes all, one after the other. Ends when each was tried: one that the daemon failed to resume stays
  /// recorded. Who awaits it has the manager outlive it.
  Task<> resumeAll();

 private:
  Task<> resume(std::int32_t pid);
  void forget(std::int32_t pid);

  HelperManager& helper_;
  Subscription activations_;
  Subscription terminations_;
  TaskScope tasks_;
};

}  // namespace vorli
