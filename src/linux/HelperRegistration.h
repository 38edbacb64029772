#pragma once

#include "linux/HelperFiles.h"
#include "linux/HelperNameWatch.h"
#include "linux/PolkitAuthority.h"
#include "linux/SystemBus.h"
#include "ports/HelperService.h"

#include <functional>
#include <memory>
#include <sdbus-c++/sdbus-c++.h>
#include <string>
#include <vector>

namespace vorli::linuxhost {

/// Finds out how the daemon stands with the bus, the service manager and polkit, without a prompt and without
/// starting it. Works on the bus's thread.
class HelperRegistration final : public SystemBus::Client,
                                 public std::enable_shared_from_this<HelperRegistration> {
 public:
  /// Beyond the numbers of the port.
  static constexpr int noSystemBus = 100;
  static constexpr int noPolkit = 101;
  static constexpr int noUnit = 102;

  enum class Approval { granted, declined, notToBeHadHere };

  static std::shared_ptr<HelperRegistration> on(SystemBus& bus, std::shared_ptr<HelperNameWatch> watch,
                                                HelperFiles files);

  /// Answers with a number of the port's `status()`. A question during a reading gets the answer of the next.
  void readStatus(std::function<void(int)> done);

  /// Whether polkit would let the daemon move a startup item for us now. Doubt counts as granted: the daemon
  /// asks again itself.
  void readStartupItemConsent(std::function<void(ports::Consent)> done);

  /// Asks the user for whatever approval is missing. Not to be had here: nothing is missing, or no password
  /// would help.
  void askForApproval(std::function<void(Approval)> done);

  /// Called when what was read may have changed.
  void setChangeHandler(std::function<void()> handler);

  void connected(sdbus::IConnection& connection) override;
  void disconnected() override;

 private:
  HelperRegistration(std::shared_ptr<HelperNameWatch> watch, std::shared_ptr<PolkitAuthority> polkit,
                     HelperFiles files);

  // The steps of one reading; each ends it or goes on to the next.
  void judgePresence();
  void askForServiceManager();
  void loadUnit();
  void askForLoadState(const std::string& unitPath);
  void judgeLoadState(const std::string& loadState);
  void askPolkit();
  void finish(int status);

  void promptFor(const std::string& action, std::function<void(Approval)> done);

  std::shared_ptr<HelperNameWatch> watch_;
  std::shared_ptr<PolkitAuthority> polkit_;
  const HelperFiles files_;
  sdbus::IConnection* connection_ = nullptr;
  std::unique_ptr<sdbus::IProxy> bus_;
  std::unique_ptr<sdbus::IProxy> manager_;
  std::unique_ptr<sdbus::IProxy> unit_;
  std::vector<std::function<void(int)>> waiting_;
};

}  // namespace vorli::linuxhost
