#pragma once

#include "base/Scheduler.h"
#include "ports/HelperService.h"

#import <ServiceManagement/ServiceManagement.h>
#include <memory>

namespace vorli::machost {

/// The daemon's registration with the system. The status is read at each call, and the system itself asks the
/// user.
class HelperService final : public ports::HelperService {
 public:
  explicit HelperService(Scheduler& scheduler);

  int status() override;
  void readStatus(OnceReply<int> reply) override;
  /// False: the system starts the daemon from within the program's own bundle.
  bool isOtherBuildRegistered() override { return false; }
  void setChangeHandler(std::function<void()> handler) override;
  [[nodiscard]] std::expected<void, std::string> registerDaemon(ports::AskedBy asker) override;
  void setFailureHandler(std::function<void(std::string)> handler) override;
  void setNoPromptHandler(std::function<void()> handler) override;
  void unregisterDaemon(OnceReply<std::expected<void, std::string>> reply) override;
  void openSystemSettingsLoginItems(ports::AskedBy asker) override;
  /// Always granted: an approved daemon may move startup items.
  void startupItemConsent(OnceReply<ports::Consent> reply) override;
  /// Replies with success, because there is nothing to ask for.
  void askForStartupItemConsent(OnceReply<std::expected<void, std::string>> reply) override;

 private:
  struct Life {};

  Scheduler& scheduler_;
  SMAppService* const service_;
  const std::shared_ptr<Life> life_ = std::make_shared<Life>();
};

}  // namespace vorli::machost
