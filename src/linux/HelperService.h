#pragma once

#include "base/Scheduler.h"
#include "linux/HelperFiles.h"
#include "linux/HelperNameWatch.h"
#include "linux/SystemBus.h"
#include "ports/HelperService.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

class QProcess;

namespace vorli::linuxhost {

class HelperRegistration;

/// The daemon's registration: what the package manager or our own install script did, read from the bus and
/// polkit. The main thread sees the last known state; a change is told.
class HelperService final : public ports::HelperService {
 public:
  /// `programFolder` is where the application's executable lies. `showOwnPage` brings up the program's own
  /// page about the daemon.
  HelperService(Scheduler& scheduler, SystemBus& bus, std::shared_ptr<HelperNameWatch> watch,
                const std::string& programFolder, std::function<void()> showOwnPage);
  ~HelperService() override;

  /// Also starts a new reading, for the next time.
  int status() override;
  void readStatus(OnceReply<int> reply) override;
  void setChangeHandler(std::function<void()> handler) override;

  /// A packaged daemon is registered already. Otherwise the install script is started, with polkit's own
  /// question for a password; until it ends, approval is required.
  std::expected<void, std::string> registerDaemon(ports::AskedBy asker) override;
  void setFailureHandler(std::function<void(std::string)> handler) override;
  /// Always succeeds and does nothing: only the package manager removes a package.
  void unregisterDaemon(OnceReply<std::expected<void, std::string>> reply) override;

  /// After a click polkit asks for what is missing; otherwise, and where no password would help, the
  /// program's own page comes up.
  void openSystemSettingsLoginItems(ports::AskedBy asker) override;
  void startupItemConsent(OnceReply<ports::Consent> reply) override;

 private:
  struct Life {};

  bool isInstalling() const { return installer_ != nullptr; }
  int effectiveStatus() const;
  void read();
  void taken(int status);
  void tellWhenChanged();
  void installerEnded();

  /// Carries a result from the bus's thread to the main thread, where it is dropped when the service is gone.
  template <typename Result>
  std::function<void(Result)> onMainThread(std::function<void(Result)> handler);

  Scheduler& scheduler_;
  SystemBus& bus_;
  std::shared_ptr<HelperNameWatch> watch_;
  const HelperFiles files_;
  std::shared_ptr<HelperRegistration> registration_;
  const std::function<void()> showOwnPage_;
  std::function<void()> changed_;
  std::function<void(std::string)> failed_;
  std::unique_ptr<QProcess> installer_;
  int lastKnown_ = 0;
  int lastTold_ = 0;
  bool isReading_ = false;
  bool readsAgain_ = false;
  bool isPrompting_ = false;
  std::vector<OnceReply<int>> waiting_;
  std::vector<OnceReply<int>> waitingForNext_;
  std::shared_ptr<Life> life_ = std::make_shared<Life>();
};

}  // namespace vorli::linuxhost
