#pragma once

#include "base/Scheduler.h"
#include "contract/HelperProtocol.h"
#include "ports/HelperService.h"
#include "ports/HelperTransport.h"

#include <functional>
#include <memory>
#include <string>

namespace vorli {

/// The one connection to the daemon: opened when a call needs it, dropped on any error or interruption. Held
/// by a shared pointer, so that a late event finds the link destroyed instead of dangling. Main thread.
class HelperLink : public std::enable_shared_from_this<HelperLink> {
 public:
  /// `reportError` receives a text for the views when the connection fails.
  HelperLink(Scheduler& scheduler, ports::HelperService& service, ports::HelperTransport& transport,
             std::function<void(std::string)> reportError);

  /// Returns a new proxy on the connection, which is opened if there is none. Null when the daemon cannot be
  /// reached.
  std::shared_ptr<HelperProtocol> proxy();

  void close();

 private:
  void open();

  // Events act on the connection that is open when they arrive, which may be newer than their own.
  void proxyFailed(const std::string& description);
  void reusedProxyFailed(const std::string& description);
  void invalidated();
  void interrupted();

  // Events arrive on any thread; each is posted to the main loop.
  std::function<void()> onMainThread(void (HelperLink::*event)());
  std::function<void(std::string)> onMainThread(void (HelperLink::*event)(const std::string&));

  Scheduler& scheduler_;
  ports::HelperService& service_;
  ports::HelperTransport& transport_;
  const std::function<void(std::string)> reportError_;
  std::unique_ptr<ports::HelperConnection> connection_;
};

}  // namespace vorli
