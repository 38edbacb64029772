#pragma once

#include "base/OnceReply.h"
#include "base/Scheduler.h"
#include "base/TaskScope.h"
#include "daemon/Authority.h"
#include "daemon/CallerBook.h"
#include "daemon/Callers.h"
#include "daemon/Commands.h"
#include "daemon/Order.h"
#include "daemon/RequestLimits.h"
#include "helper/HelperProtocol.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace vorli::daemon {

enum class LogImportance { notice, warning };
using LogSink = std::function<void(LogImportance, const std::string&)>;

/// Takes every request through the same steps: decode, check limits, authorise, act with a deadline, reply.
/// Main thread.
class RequestDesk {
 public:
  struct Timing {
    static constexpr double identitySeconds = 2.0;
    static constexpr double authorisationSeconds = 3.0;
  };

  RequestDesk(Scheduler& scheduler, Callers& callers, Authority& authority, Commands& commands, LogSink log);

  /// Answered within the method's deadline, always.
  void submit(Request request, OnceReply<HelperReply> reply);

  /// Requests not yet answered, and work that goes on after its answer.
  std::size_t inFlight() const { return limits_.inFlight(); }
  /// Called whenever a request has ended.
  void onRelease(std::function<void()> handler) { limits_.onRelease(std::move(handler)); }

 private:
  /// A request on its way through the steps.
  struct Case {
    Request request;
    /// Null when there was none left.
    std::shared_ptr<RequestLimits::Place> place;
    std::uint64_t serial = 0;
    double startedAt = 0.0;
    std::optional<UserId> user;
    Verdict verdict = Verdict::none;
  };
  using SharedCase = std::shared_ptr<Case>;

  Task<> serve(SharedCase entry, OnceReply<HelperReply> reply);
  Task<HelperReply> decide(SharedCase entry);
  /// Does nothing when the user is known already.
  Task<> identify(SharedCase entry);
  Task<> authorise(SharedCase entry, std::string subject);
  void act(const Order& order, Permit permit, OnceReply<HelperReply> reply);
  void close(const Case& entry, const HelperReply& answer);
  /// Seconds that `entry` has before its deadline.
  double left(const Case& entry) const;

  Scheduler& scheduler_;
  Callers& callers_;
  Authority& authority_;
  Commands& commands_;
  LogSink log_;
  RequestLimits limits_;
  CallerBook book_;
  std::uint64_t lastSerial_ = 0;
  TaskScope tasks_;  // last: its flows use everything above
};

}  // namespace vorli::daemon
