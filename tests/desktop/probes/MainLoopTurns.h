#pragma once

#include <QAbstractEventDispatcher>
#include <QTimer>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fcntl.h>
#include <poll.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace vorli {

/// Measures the turns of the main thread, from one wait for events to the next. On a busy machine the wall
/// time of a turn is mostly chance, so each has three parts: work, blocked, and unserved, which is the time
/// that the thread was ready but had no processor. The gaps of a 60 Hz beat show what a user would see. Main
/// thread. A program has one object of this class, and routes `poll` and `ppoll` through `wait`.
class MainLoopTurns {
 public:
  struct Turn {
    double at = 0.0;  // its start; everything in seconds
    double wall = 0.0;
    double work = 0.0;
    double unserved = 0.0;

    double blocked() const { return std::max(0.0, wall - work - unserved); }
    double own() const { return work + blocked(); }
  };

  MainLoopTurns() {
    // The dispatcher's own signals do not enclose its timers, so its next call of `poll` separates the turns.
    QObject::connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::aboutToBlock,
                     [this] { isAboutToWait_ = true; });
    watching_ = this;
    beat_.setTimerType(Qt::PreciseTimer);
    beat_.callOnTimeout([this] {
      const double now = seconds(CLOCK_MONOTONIC);
      gaps_.push_back(now - std::exchange(lastBeat_, now));
    });
    begin();
  }
  ~MainLoopTurns() {
    watching_ = nullptr;
    close(schedulingFile_);
  }
  MainLoopTurns(const MainLoopTurns&) = delete;
  MainLoopTurns& operator=(const MainLoopTurns&) = delete;

  /// Waits like `ppoll`, for any thread and any reason.
  static int wait(pollfd* files, nfds_t count, const timespec* limit, const sigset_t* mask) {
    const bool isOfTheLoop =
        watching_ && gettid() == getpid() && std::exchange(watching_->isAboutToWait_, false);
    if (isOfTheLoop) watching_->end();
    timespec left{};  // the kernel writes into it
    if (limit) left = *limit;
    const auto result = syscall(SYS_ppoll, files, count, limit ? &left : nullptr, mask, 8);
    if (isOfTheLoop && watching_) watching_->begin();
    return static_cast<int>(result);
  }

  /// Forgets all turns, and starts a new turn and the beat. Returns the current turn, which ends here.
  Turn restart() {
    const Turn part = sinceBegin();
    turns_.clear();
    gaps_.clear();
    lastBeat_ = seconds(CLOCK_MONOTONIC);
    beat_.start(16);
    begin();
    return part;
  }
  void stop() {
    end();
    beat_.stop();
  }

  /// Turns and gaps since the restart.
  const std::vector<Turn>& turns() const { return turns_; }
  const std::vector<double>& gaps() const { return gaps_; }

 private:
  static double seconds(clockid_t clock) {
    timespec time{};
    clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
  }
  // "work unserved slices", in nanoseconds, of the process's first thread.
  double unserved() const {
    char text[128]{};
    if (pread(schedulingFile_, text, sizeof text - 1, 0) <= 0) std::abort();  // no kernel to judge by
    unsigned long long work = 0, waited = 0;
    std::sscanf(text, "%llu %llu", &work, &waited);
    return static_cast<double>(waited) / 1e9;
  }

  void begin() {
    began_ = {seconds(CLOCK_MONOTONIC), 0.0, seconds(CLOCK_THREAD_CPUTIME_ID), unserved()};
    isInTurn_ = true;
  }
  Turn sinceBegin() const {
    return {began_.at, seconds(CLOCK_MONOTONIC) - began_.at, seconds(CLOCK_THREAD_CPUTIME_ID) - began_.work,
            unserved() - began_.unserved};
  }
  void end() {
    if (std::exchange(isInTurn_, false)) turns_.push_back(sinceBegin());
  }

  const int schedulingFile_ = open("/proc/self/schedstat", O_RDONLY | O_CLOEXEC);
  QTimer beat_;
  double lastBeat_ = 0.0;
  Turn began_;  // with the counters at that time
  bool isInTurn_ = false;
  bool isAboutToWait_ = false;
  std::vector<Turn> turns_;
  std::vector<double> gaps_;

  static inline MainLoopTurns* watching_ = nullptr;
};

}  // namespace vorli
