#pragma once

#include "base/Observable.h"
#include "base/Scheduler.h"
#include "base/SharedInstance.h"
#include "base/Task.h"
#include "base/TaskScope.h"
#include "helper/HelperCalls.h"
#include "helper/HelperLink.h"
#include "helper/HelperProtocol.h"
#include "helper/InstallStatus.h"
#include "ports/ApplicationBundle.h"
#include "ports/HelperService.h"
#include "ports/HelperTransport.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace vorli {

enum class HelperReachability { reachable, needsApproval, unreachable };

/// Whether a repair happens at any rate, or only when something is wrong.
enum class Reinstall { ifStale, forced };

/// The only owner of the daemon's registration and of the connection to it. Every call has a time limit and
/// always returns a value; nothing here throws or hangs. Main thread.
class HelperManager : public SharedInstance<HelperManager> {
 public:
  using AskedBy = ports::AskedBy;

  HelperManager(Scheduler& scheduler, ports::HelperService& service, ports::HelperTransport& transport,
                const ports::ApplicationBundle& bundle);
  ~HelperManager();

  Observable<InstallStatus> status{InstallStatus::Case::notRegistered};
  /// A text for the views; empty when there is nothing to tell.
  Observable<std::optional<std::string>> lastError;
  /// True from the start of an unregister until it is known whether the daemon lives.
  Observable<bool> isInstalling{false};

  void refreshStatus();
  void registerDaemon(AskedBy asker = AskedBy::user);

  /// One repair at a time: a second caller waits for the first one's repair, whatever it asked for.
  Task<> reinstallIfStale(Reinstall force, AskedBy asker = AskedBy::user);
  /// For an action of the user's: may lead to where the daemon is approved.
  Task<HelperReachability> ensureHelperAlive();

  /// True when any reply came in time.
  Task<bool> pingWithTimeout(double seconds) { return calls_.ping(seconds); }
  /// The daemon's version, or "unknown".
  Task<std::string> versionWithTimeout(double seconds) { return calls_.version(seconds); }
  Task<HelperReply> purgeMemory() { return calls_.purgeMemory(); }
  Task<HelperReply> flushDNS() { return calls_.flushDNS(); }
  Task<HelperReply> killPID(std::int32_t pid, std::int32_t signal) { return calls_.killPID(pid, signal); }
  Task<HelperReply> moveLaunchAgentPlist(std::string from, std::string to) {
    return calls_.moveLaunchAgentPlist(std::move(from), std::move(to));
  }

  /// Leads the user, who asked for it, to where the daemon is approved.
  void openLoginItems() { service_.openSystemSettingsLoginItems(AskedBy::user); }

 private:
  bool isStatus(InstallStatus::Case which) const { return status.get() == which; }

  void registrationFailed(const std::string& text);

  Task<> performReinstall(Reinstall force);
  /// Logs its verdict either way.
  Task<bool> needsReinstall();
  Task<> unregisterDaemon();
  Task<> awaitFreshStatus();
  Task<HelperReachability> askForConsentIfMissing();

  Scheduler& scheduler_;
  ports::HelperService& service_;
  const ports::ApplicationBundle& bundle_;
  std::shared_ptr<HelperLink> link_;
  HelperCalls calls_;
  TaskHandle inFlightReinstall_;
  AskedBy reinstallAskedBy_ = AskedBy::program;
  TaskScope tasks_;
};

}  // namespace vorli
