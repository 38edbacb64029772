#include "helper/HelperLink.h"

#include "helper/HelperLog.h"
#include "helper/InstallStatus.h"

#include <utility>

namespace vorli {

HelperLink::HelperLink(Scheduler& scheduler, ports::HelperService& service, ports::HelperTransport& transport,
                       std::function<void(std::string)> reportError)
    : scheduler_(scheduler), service_(service), transport_(transport), reportError_(std::move(reportError)) {}

std::shared_ptr<HelperProtocol> HelperLink::proxy() {
  if (connection_) {
    helperLog.log("Reusing existing XPC connection to helper");
    return connection_->remoteObjectProxy(onMainThread(&HelperLink::reusedProxyFailed));
  }
  open();
  return connection_->remoteObjectProxy(onMainThread(&HelperLink::proxyFailed));
}

void HelperLink::open() {
  const auto status = InstallStatus::fromRawValue(service_.status());
  helperLog.log("Opening new XPC connection to %{public}s (service status: %s)", helper::serviceName,
                status.description());
  auto connection = transport_.connect(helper::serviceName);
  connection->setInvalidationHandler(onMainThread(&HelperLink::invalidated));
  connection->setInterruptionHandler(onMainThread(&HelperLink::interrupted));
  connection->resume();
  connection_ = std::move(connection);
}

void HelperLink::close() {
  if (!connection_) return;
  connection_->invalidate();
  connection_ = nullptr;
}

void HelperLink::proxyFailed(const std::string& description) {
  helperLog.error("XPC proxy error: %{public}s", description);
  reportError_("XPC error: " + description);
  close();
}

void HelperLink::reusedProxyFailed(const std::string& description) {
  helperLog.error("XPC proxy error (reused): %{public}s", description);
  reportError_("XPC error: " + description);
  close();
}

void HelperLink::invalidated() {
  helperLog.error("XPC connection invalidated");
  reportError_("Helper connection invalidated.");
  close();
}

void HelperLink::interrupted() {
  helperLog.error("XPC connection interrupted");
  close();
}

std::function<void()> HelperLink::onMainThread(void (HelperLink::*event)()) {
  return [&scheduler = scheduler_, weak = weak_from_this(), event] {
    scheduler.post([weak, event] {
      if (const auto link = weak.lock()) (link.get()->*event)();
    });
  };
}

std::function<void(std::string)> HelperLink::onMainThread(void (HelperLink::*event)(const std::string&)) {
  return [&scheduler = scheduler_, weak = weak_from_this(), event](std::string description) {
    scheduler.post([weak, event, description = std::move(description)] {
      if (const auto link = weak.lock()) (link.get()->*event)(description);
    });
  };
}

}  // namespace vorli
