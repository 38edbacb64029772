#pragma once

#include "base/HostSystem.h"
#include "base/Published.h"
#include "base/Scheduler.h"
#include "base/Task.h"
#include "base/TaskScope.h"
#include "contract/HelperProtocol.h"
#include "helper/HelperCalls.h"
#include "helper/HelperLink.h"
#include "helper/HelperTexts.h"
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

/// Whether to repair only when something is wrong, or always.
enum class Reinstall { ifStale, forced };

/// The only owner of the daemon's registration and of the connection to it. Every call has a time limit and
/// always returns a value; nothing here throws or hangs. Main thread.
class HelperManager {
 public:
  using AskedBy = ports::AskedBy;

  HelperManager(Scheduler& scheduler, ports::HelperService& service, ports::HelperTransport& transport,
                const ports::ApplicationBundle& bundle,
                const HelperTexts& texts = ofThisSystem<HelperTexts>());
  ~HelperManager();

  Published<InstallStatus, HelperManager> status{InstallStatus::Case::notRegistered};
  /// Text for the views; empty when there is no error.
  Published<std::optional<std::string>, HelperManager> lastError;
  void forgetLastError() { lastError = std::nullopt; }
  /// True from the start of a re-registration until it is known whether the daemon answers.
  Published<bool, HelperManager> isInstalling{false};

  /// True while the daemon in use is not the one that came with the program; a reinstallation replaces it.
  Published<bool, HelperManager> isOtherBuildInstalled{false};

  /// Why the user cannot give the approval that was asked for last; empty when nothing is known to prevent
  /// it.
  Published<std::optional<std::string>, HelperManager> approvalObstacle;
  /// True when the user's last request needed a password and no program of the desktop could ask for it.
  Published<bool, HelperManager> lacksPrompt{false};

  void refreshStatus();
  /// Waits, within a limit, until the system has read a status that is newer than the call. Call
  /// `refreshStatus` afterwards.
  Task<> awaitFreshStatus(AskedBy asker);
  void registerDaemon(AskedBy asker = AskedBy::user);

  /// Repairs the registration, one repair at a time: a second caller waits for the one in progress, even if
  /// it asked for a forced repair.
  Task<> reinstallIfStale(Reinstall force, AskedBy asker = AskedBy::user);
  /// Call before a user's action: may open the place where the daemon is approved.
  Task<HelperReachability> ensureHelperAlive();

  /// True when any reply arrived in time.
  Task<bool> pingWithTimeout(double seconds) { return calls_.ping(seconds); }
  /// The daemon's version, or "unknown".
  Task<std::string> versionWithTimeout(double seconds) { return calls_.version(seconds); }
  Task<HelperReply> purgeMemory() { return calls_.purgeMemory(); }
  Task<HelperReply> flushDNS() { return calls_.flushDNS(); }
  Task<HelperReply> killPID(std::int32_t pid, std::int32_t signal) { return calls_.killPID(pid, signal); }
  Task<HelperReply> moveLaunchAgentPlist(std::string from, std::string to) {
    return calls_.moveLaunchAgentPlist(std::move(from), std::move(to));
  }

  /// Opens the place where the daemon is approved, at the user's request.
  void openLoginItems();
  /// Asks the user for the consent that `ensureHelperAlive` found missing.
  void askForStartupItemConsent();

  /// The status and the last error as one text for the user.
  std::string stateText() const;

 private:
  struct Life {};

  bool isStatus(InstallStatus::Case which) const { return status.get() == which; }
  /// True when the system says that the daemon is anything but enabled.
  bool isStatusBroken() const;

  void registrationFailed(const std::string& text);
  void setLacksPrompt(bool lacks);
  void setApprovalObstacle(std::optional<std::string> obstacle);
  void forgetLastRequest();

  Task<> performReinstall(Reinstall force);
  /// Logs the result either way.
  Task<bool> needsReinstall();
  Task<> unregisterDaemon();
  Task<HelperReachability> askForConsentIfMissing();

  Scheduler& scheduler_;
  ports::HelperService& service_;
  const ports::ApplicationBundle& bundle_;
  const HelperTexts& texts_;
  std::shared_ptr<HelperLink> link_;
  HelperCalls calls_;
  TaskHandle inFlightReinstall_;
  AskedBy reinstallAskedBy_ = AskedBy::program;
  bool hasReadStatus_ = false;  // false while `status` is only the value that it starts with
  std::shared_ptr<Life> life_ = std::make_shared<Life>();
  TaskScope tasks_;
};

}  // namespace vorli
