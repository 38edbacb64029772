#pragma once

#include "linux/bus/Library.h"
#include "linux/helper/HelperFiles.h"
#include "linux/helper/HelperNameWatch.h"
#include "linux/helper/PolkitAuthority.h"
#include "linux/helper/SystemBus.h"
#include "ports/HelperService.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace vorli::linuxhost {

/// Asks the bus, the service manager and polkit for the state of the daemon, without starting it. Only
/// the functions that ask for approval or consent may prompt the user. Runs on the bus's thread.
class HelperRegistration final : public SystemBus::Client,
                                 public std::enable_shared_from_this<HelperRegistration> {
 public:
  /// Values of the port's `status()`.
  static constexpr int notRegistered = 0;
  static constexpr int enabled = 1;
  static constexpr int requiresApproval = 2;
  static constexpr int notFound = 3;
  /// Values in addition to those of the port.
  static constexpr int noSystemBus = 100;
  static constexpr int noPolkit = 101;
  static constexpr int noUnit = 102;

  /// Outcome of asking the user. `notMissing`: nothing needs approval, or there is no daemon to approve.
  /// `masked`: the service manager may not start the daemon. `refused`: polkit's rules allow it to nobody
  /// here. `nobodyToAsk`: no agent shows password windows.
  enum class Approval { granted, declined, notMissing, masked, refused, nobodyToAsk };

  struct Outcome {
    Approval approval;
    std::optional<int> status;  // as the request found it; empty if it did not read it
  };

  static std::shared_ptr<HelperRegistration> on(SystemBus& bus, std::shared_ptr<HelperNameWatch> watch,
                                                HelperFiles files);

  /// Replies with a value of the port's `status()` or one of those above. The reading always begins after the
  /// question: questions that arrive during a reading share the next one.
  void readStatus(std::function<void(int)> done);

  /// Asks whether polkit would now let the daemon move a startup item for this program. Doubt counts as
  /// granted: the daemon asks again itself.
  void readStartupItemConsent(std::function<void(ports::Consent)> done);

  /// Asks the user for the password that the daemon needs to work at all, if that is what it lacks.
  void askForApproval(std::function<void(Outcome)> done);
  /// Asks the user for the password that changing a startup item needs; when that needs none, does the same
  /// as `askForApproval`.
  void askForStartupItemConsent(std::function<void(Outcome)> done);

  /// Sets the handler that is called when the state may have changed.
  void setChangeHandler(std::function<void()> handler);

  void connected(sdbus::IConnection& connection) override;
  void disconnected() override;

 private:
  HelperRegistration(std::shared_ptr<HelperNameWatch> watch, std::shared_ptr<PolkitAuthority> polkit,
                     HelperFiles files);

  /// The reason why an installed daemon cannot work.
  enum class Lack { nothing, password, permission, unit };

  // Steps of one reading. Each finishes it or starts the next step.
  void startReading();
  void judgePresence();
  void askForServiceManager();
  void loadUnit();
  void askForLoadState(const std::string& unitPath);
  void judgeLoadState(const std::string& loadState);
  void askPolkit();
  void finish(int status, Lack lack = Lack::nothing);

  void promptFor(const std::string& action, std::function<void(Approval)> done);

  std::shared_ptr<HelperNameWatch> watch_;
  std::shared_ptr<PolkitAuthority> polkit_;
  const HelperFiles files_;
  sdbus::IConnection* connection_ = nullptr;
  std::unique_ptr<sdbus::IProxy> bus_;
  std::unique_ptr<sdbus::IProxy> manager_;
  std::unique_ptr<sdbus::IProxy> unit_;
  bool isReading_ = false;
  std::vector<std::function<void(int)>> waiting_;         // for the current reading
  std::vector<std::function<void(int)>> waitingForNext_;  // asked during the current reading
  Lack lack_ = Lack::nothing;                             // result of the last reading
};

}  // namespace vorli::linuxhost
