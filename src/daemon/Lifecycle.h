#pragma once

#include "base/OnceReply.h"
#include "base/Scheduler.h"

#include <cstddef>
#include <functional>
#include <memory>

namespace vorli::daemon {

/// When and how the daemon leaves: idle, told to, or replaced on disk. No call that was sent to it is lost:
/// the name is given back first, what the bus had already sent is served, and only then does the process end.
/// Main thread.
class Lifecycle {
 public:
  /// What leaving needs of the connection to the bus.
  class Link {
   public:
    virtual ~Link() = default;
    virtual void releaseName() = 0;
    /// Answered when everything that the bus sent before this call has been handled.
    virtual void barrier(OnceReply<bool> reply) = 0;
    /// Ends the main loop.
    virtual void stop() = 0;
  };

  struct Timing {
    static constexpr double defaultIdleSeconds = 30.0;
    /// Work that takes longer is left to itself; the service manager kills at 30.
    static constexpr double drainSeconds = 25.0;
    static constexpr double barrierSeconds = 2.0;
  };

  Lifecycle(Scheduler& scheduler, Link& link, std::function<std::size_t()> inFlight, double idleSeconds);
  ~Lifecycle();

  /// Begins to wait for idleness.
  void start();
  /// A call came in.
  void touch() { lastActivity_ = scheduler_.now(); }
  /// A request has ended.
  void requestEnded();
  /// Leave as soon as what was sent so far is served.
  void leave();

 private:
  void watchIdleness(double seconds);
  void stopIfDrained();

  Scheduler& scheduler_;
  Link& link_;
  std::function<std::size_t()> inFlight_;
  const double idleSeconds_;
  double lastActivity_;
  bool leaving_ = false;
  bool everythingReceived_ = false;
  Scheduler::TimerId idleTimer_ = 0;
  Scheduler::TimerId barrierTimer_ = 0;
  Scheduler::TimerId drainTimer_ = 0;
  std::shared_ptr<const bool> alive_ = std::make_shared<const bool>(true);
};

}  // namespace vorli::daemon
