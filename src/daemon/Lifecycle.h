#pragma once

#include "base/OnceReply.h"
#include "base/Scheduler.h"

#include <cstddef>
#include <functional>
#include <memory>

namespace vorli::daemon {

/// Decides when and how the daemon exits: when idle, on request, or when replaced on disk. No call is lost:
/// the daemon first releases its name, then serves every call that the bus has already sent, and only then
/// ends the process. Main thread.
class Lifecycle {
 public:
  /// The part of the bus connection that is needed to exit.
  class Link {
   public:
    virtual ~Link() = default;
    virtual void releaseName() = 0;
    /// Answers when everything that the bus sent before this call has been handled.
    virtual void barrier(OnceReply<bool> reply) = 0;
    /// Ends the main loop.
    virtual void stop() = 0;
  };

  struct Timing {
    static constexpr double defaultIdleSeconds = 30.0;
    /// Time allowed for work in progress. Longer work is abandoned, because the service manager kills the
    /// process after 30 seconds.
    static constexpr double drainSeconds = 25.0;
  };

  Lifecycle(Scheduler& scheduler, Link& link, std::function<std::size_t()> inFlight, double idleSeconds);
  ~Lifecycle();

  /// Starts to watch for idleness.
  void start();
  /// Notes that a call has arrived.
  void touch() { lastActivity_ = scheduler_.now(); }
  /// Notes that a request has ended.
  void requestEnded();
  /// Stops the main loop as soon as all calls sent so far are served.
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
  Scheduler::TimerId drainTimer_ = 0;
  std::shared_ptr<const bool> alive_ = std::make_shared<const bool>(true);
};

}  // namespace vorli::daemon
