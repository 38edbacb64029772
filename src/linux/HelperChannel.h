#pragma once

#include "base/Scheduler.h"

#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <string>

namespace vorli::linuxhost {

/// What one connection to the daemon has out, and who is told when something fails. The thread of the bus and
/// the main thread meet here: each request ends once, by a reply, a failure or the end of the connection.
/// Any thread. Handlers run on the main loop, and all that one event has to tell runs in one turn: told piece
/// by piece from another thread, the last of it could fall on a connection opened since.
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

  /// True when the reply is still awaited: it may be handed on.
  [[nodiscard]] bool finish(RequestId request);
  /// The interruption is told once for all the requests that a dying daemon leaves unanswered.
  void fail(RequestId request, const std::string& description, Cause cause);

  /// Ends the channel and tells everybody. Does nothing the second time.
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
