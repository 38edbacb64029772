#pragma once

#include "contract/HelperProtocol.h"

#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace vorli::ports {

/// One connection to the daemon. Call it on the main thread only; no call blocks on the bus. Handlers run on
/// any thread, never inside the call that caused them, and possibly after the connection object is destroyed,
/// so they must hold weak references.
class HelperConnection {
 public:
  virtual ~HelperConnection() = default;

  /// Called once, when the connection has become unusable: it was invalidated on this side or permanently
  /// lost.
  virtual void setInvalidationHandler(std::function<void()> handler) = 0;
  /// Called when the daemon exits while a call is in flight.
  virtual void setInterruptionHandler(std::function<void()> handler) = 0;

  /// Starts the connection; install the handlers first.
  virtual void resume() = 0;
  /// Closes the connection. Requests in flight fail, then the invalidation handler is called.
  virtual void invalidate() = 0;

  /// The daemon's interface. `errorHandler` receives a description when a request made through this proxy
  /// fails to reach the daemon; that request is then never answered. Null when the daemon cannot be reached.
  virtual std::shared_ptr<HelperProtocol> remoteObjectProxy(
      std::function<void(std::string)> errorHandler) = 0;
};

/// Opens connections to the daemon.
class HelperTransport {
 public:
  virtual ~HelperTransport() = default;

  /// A new connection, not yet started. Never null; when the daemon cannot be reached, it has no proxy. Main
  /// thread; does not block.
  virtual std::unique_ptr<HelperConnection> connect(std::string_view serviceName) = 0;
};

}  // namespace vorli::ports
