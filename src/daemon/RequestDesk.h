#pragma once

#include "base/OnceReply.h"
#include "base/Scheduler.h"
#include "base/TaskScope.h"
#include "contract/HelperProtocol.h"
#include "daemon/Authority.h"
#include "daemon/CallerBook.h"
#include "daemon/Callers.h"
#include "daemon/Commands.h"
#include "daemon/LogBudget.h"
#include "daemon/Order.h"
#include "daemon/RequestLimits.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace vorli::daemon {

/// `notice` is reserved for granted requests: a log service that limits each importance separately then keeps
/// room for them that other lines cannot use up.
enum class LogImportance { detail, notice, warning };
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

  /// Always answers within the method's deadline.
  void submit(Request request, OnceReply<HelperReply> reply);

  /// False while the users of as many requests are being looked up as the desk can hold; the caller must then
  /// stop reading requests.
  bool takesMore() const { return limits_.hasRoomForUnidentified(); }
  /// Number of requests that are not answered yet, plus work that continues after its answer.
  std::size_t inFlight() const { return limits_.inFlight(); }
  /// Sets the function to call whenever a request has ended.
  void onRelease(std::function<void()> handler) { limits_.onRelease(std::move(handler)); }

 private:
  /// A request on its way through the steps.
  struct Case {
    Request request;
    std::shared_ptr<RequestLimits::Place> place;
    std::uint64_t serial = 0;
    double startedAt = 0.0;
    std::optional<UserId> user;
    /// Caller's process; set for privileged requests that do not come from root.
    std::shared_ptr<CallerProcess> process;
    Verdict verdict = Verdict::none;
  };
  using SharedCase = std::shared_ptr<Case>;

  Task<> serve(SharedCase entry, OnceReply<HelperReply> reply);
  Task<HelperReply> decide(SharedCase entry);
  /// Looks up the user; does nothing when it is already known.
  Task<> identify(SharedCase entry);
  Task<> holdProcess(SharedCase entry);
  static bool hasOwnProcess(const Case& entry);
  Task<> authorise(SharedCase entry, std::string subject);
  void act(const Order& order, Permit permit, OnceReply<HelperReply> reply);
  void close(const Case& entry, const HelperReply& answer);
  void tellLeftOut(LogBudget::User user, std::size_t count);
  /// Seconds left until the deadline of `entry`.
  double left(const Case& entry) const;

  Scheduler& scheduler_;
  Callers& callers_;
  Authority& authority_;
  Commands& commands_;
  LogSink log_;
  LogBudget budget_;
  RequestLimits limits_;
  CallerBook book_;
  std::uint64_t lastSerial_ = 0;
  TaskScope tasks_;  // last: its flows use everything above
};

}  // namespace vorli::daemon
