#include "base/RepeatingTimer.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace vorli {

RepeatingTimer::RepeatingTimer(Scheduler& scheduler, double periodSeconds, UniqueFunction<void()> fire,
                               Scheduler::Precision precision)
    : scheduler_(scheduler),
      period_(periodSeconds),
      precision_(precision),
      nextDue_(scheduler.now() + periodSeconds),
      fire_(std::move(fire)) {
  VORLI_ASSERT(periodSeconds > 0.0);
  arm();
}

RepeatingTimer::~RepeatingTimer() {
  scheduler_.cancel(timer_);
  if (destroyedDuringFire_) *destroyedDuringFire_ = true;
}

void RepeatingTimer::arm() {
  timer_ = scheduler_.after(
      nextDue_ - scheduler_.now(),
      [this] {
        const double late = scheduler_.now() - nextDue_;
        nextDue_ += period_ * (1.0 + std::floor(std::max(late, 0.0) / period_));
        arm();
        if (!fire_) return;  // a nested loop inside an earlier firing
        bool destroyed = false;
        destroyedDuringFire_ = &destroyed;
        auto fire = std::move(fire_);
        fire();
        if (destroyed) return;
        fire_ = std::move(fire);
        destroyedDuringFire_ = nullptr;
      },
      precision_);
}

}  // namespace vorli
