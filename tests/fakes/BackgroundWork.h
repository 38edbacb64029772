#pragma once

#include "base/Assert.h"
#include "base/Scheduler.h"
#include "ports/BackgroundWork.h"

#include <utility>

namespace vorli::fakes {

/// Work that takes time on a scheduler, and is done as a whole at the end.
class BackgroundWork final : public ports::BackgroundWork {
 public:
  explicit BackgroundWork(Scheduler& scheduler) : scheduler_(scheduler) {}
  ~BackgroundWork() override { scheduler_.cancel(timer_); }

  void start(Work work, Work done) override {
    VORLI_ASSERT(!isUnderWay());
    ++started;
    work_ = std::move(work);
    done_ = std::move(done);
    timer_ = scheduler_.after(seconds, [this] { finish(); });
  }

  bool isUnderWay() const override { return static_cast<bool>(done_); }

  void finish() override {
    if (!isUnderWay()) return;
    runWork();
    auto done = std::exchange(done_, nullptr);
    done();
  }

  void abandon() override {
    if (!isUnderWay()) return;
    runWork();
    done_ = nullptr;
  }

  double seconds = 0.1;  // that a piece takes
  int started = 0;

 private:
  void runWork() {
    scheduler_.cancel(timer_);
    auto work = std::exchange(work_, nullptr);
    work();
  }

  Scheduler& scheduler_;
  Work work_;
  Work done_;
  Scheduler::TimerId timer_ = 0;
};

}  // namespace vorli::fakes
