#pragma once

#include "base/Date.h"
#include "base/Published.h"
#include "base/Scheduler.h"
#include "base/Subscription.h"
#include "base/TaskScope.h"
#include "helper/HelperManager.h"
#include "ports/Workspace.h"

#include <cstdint>
#include <map>
#include <set>
#include <string>

namespace vorli {

/// Record of a stopped application.
struct SuspendedAppInfo {
  std::string bundleID;
  std::string displayName;
  Date suspendedAt;

  bool operator==(const SuspendedAppInfo&) const = default;
};

/// Keeps the record of stopped applications and prevents them from staying stopped by mistake: resumes an
/// application when the user activates it, and all of them before the program ends. Does not stop any
/// application itself. Main thread.
class SuspendedAppsManager {
 public:
  SuspendedAppsManager(Scheduler& scheduler, HelperManager& helper, ports::Workspace& workspace);

  Published<std::set<std::int32_t>, SuspendedAppsManager> suspendedPIDs;
  Published<std::map<std::int32_t, SuspendedAppInfo>, SuspendedAppsManager> suspendedInfo;

  /// Tries to resume all applications, one after the other. An application that the daemon fails to resume
  /// stays recorded. The manager must outlive the call.
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
