#pragma once

#include "base/Scheduler.h"

#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <string>

namespace vorli::linuxhost {

/// Requests in flight on one connection to the daemon, and the handlers for their failures. The bus's thread
/// and the main thread share it: each request ends exactly once, by a reply, a failure or the end of the
/// connection. Thread-safe. Handlers run on the main loop. All handlers of one event run in the same turn;
/// otherwise the last could reach a connection opened in the meantime.
class HelperChannel {
 public:
  enum class Cause { notDelivered, daemonDied };
  using RequestId = std::uint64_t;
  using ErrorHandler = std::function<void(std::string)>;

  explicit HelperChannel(Scheduler& scheduler) : scheduler_(scheduler) {}

  void setInvalidationHandler(std::function<void()> handler);
  void setInterruptionHandler(std::function<void()> handler);

  bool isClosed() const;

  RequestId begin(ErrorHandler errorHandler);

  /// Ends a request that was answered. True when it was still pending: only then may the reply be delivered.
  [[nodiscard]] bool finish(RequestId request);
  /// Ends a request and calls its error handler. When the daemon dies, the interruption handler runs once for
  /// all requests that it leaves unanswered.
  void fail(RequestId request, const std::string& description, Cause cause);

  /// Closes the channel: fails all pending requests and calls the invalidation handler. A second call does
  /// nothing.
  void close(std::string description);

 private:
  Scheduler& scheduler_;
  mutable std::mutex lock_;
  std::map<RequestId, ErrorHandler> out_;
  RequestId lastRequest_ = 0;
  bool isClosed_ = false;
  bool isInterrupted_ = false;
  std::function<void()> invalidated_;
  std::function<void()> interrupted_;
};

}  // namespace vorli::linuxhost
