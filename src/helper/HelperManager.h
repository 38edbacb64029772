#pragma once

#include "base/Logger.h"
#include "base/Observable.h"
#include "base/Scheduler.h"
#include "base/SharedInstance.h"
#include "base/Task.h"
#include "base/TaskScope.h"
#include "helper/HelperProtocol.h"
#include "helper/InstallStatus.h"
#include "ports/ApplicationBundle.h"
#include "ports/HelperService.h"
#include "ports/HelperTransport.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace vorli {

enum class HelperReachability { reachable, needsApproval, unreachable };

/// Whether a repair happens at any rate, or only when something is wrong.
enum class Reinstall { ifStale, forced };

/// The only owner of the daemon's registration and of the connection to it. Every call has a time limit and
/// always returns a value; nothing here throws or hangs. Main thread.
class HelperManager : public SharedInstance<HelperManager> {
 public:
  HelperManager(Scheduler& scheduler, ports::HelperService& service, ports::HelperTransport& transport,
                const ports::ApplicationBundle& bundle);
  ~HelperManager();

  Observable<InstallStatus> status{InstallStatus::Case::notRegistered};
  /// A text for the views; empty when there is nothing to tell.
  Observable<std::optional<std::string>> lastError;
  Observable<bool> isInstalling{false};

  void refreshStatus();
  void registerDaemon();

  /// One repair at a time: a second caller waits for the first one's repair, whatever it asked for.
  Task<> reinstallIfStale(Reinstall force);
  Task<HelperReachability> ensureHelperAlive();

  /// True when any reply came in time.
  Task<bool> pingWithTimeout(double seconds);
  /// The daemon's version, or "unknown".
  Task<std::string> versionWithTimeout(double seconds);
  Task<HelperReply> purgeMemory();
  Task<HelperReply> flushDNS();
  Task<HelperReply> killPID(std::int32_t pid, std::int32_t signal);
  Task<HelperReply> moveLaunchAgentPlist(std::string from, std::string to);

  /// Leads the user to where the daemon is approved.
  void openLoginItems() { service_.openSystemSettingsLoginItems(); }

 private:
  Scheduler& scheduler_;
  ports::HelperService& service_;
  ports::HelperTransport& transport_;
  const ports::ApplicationBundle& bundle_;
};

}  // namespace vorli
