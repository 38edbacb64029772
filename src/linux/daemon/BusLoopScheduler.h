#pragma once

#include "base/Scheduler.h"
#include "linux/daemon/FileDescriptor.h"

#include <deque>
#include <map>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

namespace sdbus {
class IConnection;
}

namespace vorli::linuxhost {

/// The daemon's main loop: one thread that waits for the bus, for signals, for its own timers and for the
/// workers' results, and sleeps without any wake-up when there are none. The bus library's own loop is never
/// used: in the version at hand it leaks and can stall when calls come from another thread.
class BusLoopScheduler final : public Scheduler {
 public:
  /// Belongs to the thread that makes it.
  BusLoopScheduler();

  double now() const override;
  void post(Work work) override;
  TimerId after(double seconds, Work work, Precision precision = Precision::exact) override;
  void cancel(TimerId timer) override;

  /// Calls `handler` whenever the file can be read. Before `run`.
  void watch(int fileDescriptor, UniqueFunction<void()> handler);

  /// Serves until `stop`, then sends what still waits to be sent. An error of the connection is thrown as
  /// sdbus::Error.
  void run(sdbus::IConnection& connection);
  void stop() { stopping_ = true; }

 private:
  void runPosted();
  void runDueTimers();
  void waitForEvents(sdbus::IConnection& connection);
  void sendRest(sdbus::IConnection& connection);

  const std::thread::id thread_ = std::this_thread::get_id();
  FileDescriptor wakeUp_;
  std::vector<std::pair<int, UniqueFunction<void()>>> watched_;
  bool stopping_ = false;

  TimerId lastId_ = 0;
  std::map<std::pair<double, TimerId>, Work> timers_;

  std::mutex lock_;
  std::deque<Work> posted_;
};

}  // namespace vorli::linuxhost
