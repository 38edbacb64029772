#pragma once

#include "base/Scheduler.h"
#include "linux/helper/HelperFiles.h"
#include "linux/helper/HelperNameWatch.h"
#include "linux/helper/SystemBus.h"
#include "ports/HelperService.h"

#include <expected>
#include <functional>
#include <memory>
#include <string>

class QProcess;

namespace vorli::linuxhost {

class HelperRegistration;

/// The daemon's registration, made by the package manager or our own install script, as the bus and polkit
/// report it. The main thread sees the last known state and is notified of changes.
class HelperService final : public ports::HelperService {
 public:
  /// Shows the program's own page about the daemon.
  using ShowOwnPage = std::function<void(ports::AskedBy)>;

  HelperService(Scheduler& scheduler, SystemBus& bus, std::shared_ptr<HelperNameWatch> watch,
                HelperFiles files, ShowOwnPage showOwnPage);
  ~HelperService() override;

  /// Returns the last known state and starts a new reading for the next call.
  int status() override;
  void readStatus(OnceReply<int> reply) override;
  bool isOtherBuildRegistered() override { return lastKnown_.isOtherBuild; }
  void setChangeHandler(std::function<void()> handler) override;

  /// Does nothing for a packaged daemon, which is registered already. Otherwise, when the user asks, starts
  /// the install script, for which polkit asks for a password. Until the script ends, the status says that
  /// approval is required.
  [[nodiscard]] std::expected<void, std::string> registerDaemon(ports::AskedBy asker) override;
  void setFailureHandler(std::function<void(std::string)> handler) override;
  void setNoPromptHandler(std::function<void()> handler) override;
  /// Always succeeds and does nothing: only the package manager removes a package.
  void unregisterDaemon(OnceReply<std::expected<void, std::string>> reply) override;

  /// After a click, polkit asks for the password when that is what the daemon lacks. Otherwise the program's
  /// own page is shown.
  void openSystemSettingsLoginItems(ports::AskedBy asker) override;
  void startupItemConsent(OnceReply<ports::Consent> reply) override;
  /// Reports an obstacle only in the reply; the program's own page is not shown.
  void askForStartupItemConsent(OnceReply<std::expected<void, std::string>> reply) override;

 private:
  struct Life {};
  /// The result of one reading.
  struct Reading {
    int status = 0;
    bool isOtherBuild = false;

    bool operator==(const Reading&) const = default;
  };

  bool isInstalling() const { return installer_ != nullptr; }
  int effectiveStatus() const;
  Reading effectiveReading() const;
  void read(const std::function<void()>& whenTaken = nullptr);
  void takenFromRequest(int status);
  void tellWhenChanged();
  void tell(const Reading& now);
  void installerEnded();
  void tellOfMissingPrompt();
  enum class Wanted { approvalOfDaemon, startupItemConsent };
  using ConsentReply = std::shared_ptr<OnceReply<std::expected<void, std::string>>>;
  /// Without a reply, an obstacle is reported to the handlers.
  void askUser(Wanted wanted, const ConsentReply& reply = nullptr);
  void tellFailure(const std::string& text);

  /// Returns a handler that passes a result from the bus's thread to the main thread. The result is dropped
  /// when the service is destroyed.
  template <typename Result>
  std::function<void(Result)> onMainThread(std::function<void(Result)> handler);

  Scheduler& scheduler_;
  SystemBus& bus_;
  std::shared_ptr<HelperNameWatch> watch_;
  const HelperFiles files_;
  std::shared_ptr<HelperRegistration> registration_;
  const ShowOwnPage showOwnPage_;
  std::function<void()> changed_;
  std::function<void(std::string)> failed_;
  std::function<void()> noPrompt_;
  std::unique_ptr<QProcess> installer_;
  Reading lastKnown_;
  Reading lastTold_;
  bool isPrompting_ = false;
  std::shared_ptr<Life> life_ = std::make_shared<Life>();
};

}  // namespace vorli::linuxhost
