#include "macos/helper/HelperService.h"

#include "contract/HelperProtocol.h"
#include "macos/Text.h"

#include <utility>

namespace vorli::machost {

HelperService::HelperService(Scheduler& scheduler)
    : scheduler_(scheduler),
      service_([SMAppService daemonServiceWithPlistName:stringOf(helper::daemonPropertyList)]) {}

int HelperService::status() {
  return static_cast<int>(service_.status);
}

void HelperService::readStatus(OnceReply<int> reply) {
  scheduler_.post([this, life = std::weak_ptr(life_), reply = std::move(reply)]() mutable {
    if (!life.expired()) std::move(reply)(status());
  });
}

void HelperService::setChangeHandler(std::function<void()>) {}

std::expected<void, std::string> HelperService::registerDaemon(ports::AskedBy) {
  NSError* error = nil;
  if ([service_ registerAndReturnError:&error]) return {};
  return std::unexpected(textOf(error));
}

void HelperService::setFailureHandler(std::function<void(std::string)>) {}

void HelperService::setNoPromptHandler(std::function<void()>) {}

void HelperService::unregisterDaemon(OnceReply<std::expected<void, std::string>> reply) {
  using Result = std::expected<void, std::string>;
  const auto once = std::make_shared<OnceReply<Result>>(std::move(reply));
  const std::weak_ptr<Life> life = life_;
  Scheduler* const scheduler = &scheduler_;
  [service_ unregisterWithCompletionHandler:^(NSError* error) {
    const Result result = error ? Result(std::unexpected(textOf(error))) : Result();
    scheduler->post([once, life, result] {
      if (!life.expired()) std::move (*once)(result);
    });
  }];
}

void HelperService::openSystemSettingsLoginItems(ports::AskedBy) {
  [SMAppService openSystemSettingsLoginItems];
}

void HelperService::startupItemConsent(OnceReply<ports::Consent> reply) {
  std::move(reply)(ports::Consent::granted);
}

void HelperService::askForStartupItemConsent(OnceReply<std::expected<void, std::string>> reply) {
  scheduler_.post([life = std::weak_ptr(life_), reply = std::move(reply)]() mutable {
    if (!life.expired()) std::move(reply)({});
  });
}

}  // namespace vorli::machost
