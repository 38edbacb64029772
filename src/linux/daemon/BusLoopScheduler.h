#pragma once

#include "base/Scheduler.h"
#include "posix/FileDescriptor.h"

#include <deque>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>
#include <vector>

namespace sdbus {
class IConnection;
}

namespace vorli::linuxhost {

/// The daemon's two connections to the bus. Its own questions have a separate connection, so that no answer
/// waits behind a flood of calls.
struct BusTraffic {
  sdbus::IConnection& calls;
  sdbus::IConnection& questions;
  /// False while calls must wait in the bus's queue.
  std::function<bool()> takesCalls;
  /// False while nobody is waiting for an answer.
  std::function<bool()> awaitsAnswers;
};

/// The daemon's main loop: one thread that waits for the bus, for signals, for its own timers and for the
/// workers' results, and sleeps without any wake-up when there are none. The bus library's own loop is never
/// used: in the version in use it leaks, and can stall when calls come from another thread.
class BusLoopScheduler final : public Scheduler {
 public:
  /// Belongs to the thread that constructs it.
  BusLoopScheduler();

  double now() const override;
  void post(Work work) override;
  TimerId after(double seconds, Work work, Precision precision = Precision::exact) override;
  void cancel(TimerId timer) override;

  /// Calls `handler` whenever the file is readable. Call it before `run`.
  void watch(int fileDescriptor, UniqueFunction<void()> handler);

  /// Time after which a bus that takes no answer is given up.
  static constexpr double mostUnsentSeconds = 5.0;

  /// Serves the connections until `stop`, then sends what is still queued. False when it stopped by itself
  /// because the bus took no answer. Throws sdbus::Error when a connection fails.
  [[nodiscard]] bool run(const BusTraffic& traffic);
  void stop() { stopping_ = true; }

 private:
  void runPosted();
  void runDueTimers();
  bool serveConnections(const BusTraffic& traffic);
  bool serveCalls(const BusTraffic& traffic);
  void waitForEvents(const BusTraffic& traffic);
  /// Seconds until the next timer or posted work; empty when there is none.
  std::optional<double> timeToOwnWork();
  void sendRest(sdbus::IConnection& connection);

  const std::thread::id thread_ = std::this_thread::get_id();
  posix::FileDescriptor wakeUp_;
  std::vector<std::pair<int, UniqueFunction<void()>>> watched_;
  bool stopping_ = false;
  bool hasAnswers_ = true;
  /// Runs while the bus takes no answer; 0 otherwise.
  TimerId unsentTimer_ = 0;
  bool isGivenUp_ = false;

  TimerId lastId_ = 0;
  std::map<std::pair<double, TimerId>, Work> timers_;

  std::mutex lock_;
  std::deque<Work> posted_;
};

}  // namespace vorli::linuxhost
