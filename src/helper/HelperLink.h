#pragma once

#include "base/Observable.h"
#include "base/Scheduler.h"
#include "helper/HelperProtocol.h"
#include "ports/HelperService.h"
#include "ports/HelperTransport.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace vorli {

/// The one connection to the daemon: opened when a call needs it, dropped when anything happens to it. Held
/// by a shared pointer, so that an event of a connection long gone finds nothing. Main thread.
class HelperLink : public std::enable_shared_from_this<HelperLink> {
 public:
  /// `lastError` is written when the connection fails.
  HelperLink(Scheduler& scheduler, ports::HelperService& service, ports::HelperTransport& transport,
             Observable<std::optional<std::string>>& lastError);

  /// A fresh proxy on the connection, which is opened if there is none. Empty when nothing leads to the
  /// daemon.
  std::shared_ptr<HelperProtocol> proxy();

  void close();

 private:
  void open();

  // Events act on whatever connection stands when they arrive, which may be a newer one than their own.
  void proxyFailed(const std::string& description);
  void reusedProxyFailed(const std::string& description);
  void invalidated();
  void interrupted();

  // Events come on any thread; each takes its turn on the main loop.
  std::function<void()> onMainThread(void (HelperLink::*event)());
  std::function<void(std::string)> onMainThread(void (HelperLink::*event)(const std::string&));

  Scheduler& scheduler_;
  ports::HelperService& service_;
  ports::HelperTransport& transport_;
  Observable<std::optional<std::string>>& lastError_;
  std::unique_ptr<ports::HelperConnection> connection_;
};

}  // namespace vorli
