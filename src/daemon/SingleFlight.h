#pragma once

#include "base/OnceReply.h"
#include "base/Scheduler.h"
#include "contract/HelperProtocol.h"

#include <memory>
#include <optional>
#include <vector>

namespace vorli::daemon {

/// A piece of work that runs once at a time: requests made while it runs get the same answer. Main thread.
class SingleFlight {
 public:
  using Work = UniqueFunction<void(OnceReply<HelperReply>)>;

  struct Result {
    HelperReply reply;
    /// Seconds of the scheduler's clock.
    double endedAt = 0.0;
  };

  explicit SingleFlight(const Scheduler& clock) : clock_(clock) {}

  /// Starts `work`, or drops it and waits for the work that is already running. The work must answer on the
  /// main thread; an answer after this object's destruction is ignored.
  void join(OnceReply<HelperReply> reply, Work work);

  bool isRunning() const { return state_->running; }
  const std::optional<Result>& last() const { return state_->last; }

 private:
  struct State {
    bool running = false;
    std::vector<OnceReply<HelperReply>> waiting;
    std::optional<Result> last;
  };

  const Scheduler& clock_;
  std::shared_ptr<State> state_ = std::make_shared<State>();
};

}  // namespace vorli::daemon
