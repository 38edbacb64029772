#pragma once

#include "helper/HelperProtocol.h"

#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace vorli::ports {

/// One connection to the daemon. Its calls belong to the main thread, and none blocks on the bus. Handlers
/// come on any thread, never inside the call that caused them, and also when the connection object is gone by
/// then: they hold weakly what they touch.
class HelperConnection {
 public:
  virtual ~HelperConnection() = default;

  /// The connection is of no more use: it was invalidated from this side, or lost for good. Called once.
  virtual void setInvalidationHandler(std::function<void()> handler) = 0;
  /// The daemon went away while a call was out.
  virtual void setInterruptionHandler(std::function<void()> handler) = 0;

  /// Starts the connection; handlers are installed before.
  virtual void resume() = 0;
  /// Ends it. Requests that are out fail, and the invalidation handler follows.
  virtual void invalidate() = 0;

  /// The daemon's interface. `errorHandler` gets a description when a request made through this proxy fails
  /// to reach the daemon; the request itself is then never answered. Empty when there is no way to the
  /// daemon.
  virtual std::shared_ptr<HelperProtocol> remoteObjectProxy(
      std::function<void(std::string)> errorHandler) = 0;
};

/// Opens connections to the daemon.
class HelperTransport {
 public:
  virtual ~HelperTransport() = default;

  /// A new connection, not yet started. Never null; one that leads nowhere has no proxy. Main thread; does
  /// not block.
  virtual std::unique_ptr<HelperConnection> connect(std::string_view serviceName) = 0;
};

}  // namespace vorli::ports
