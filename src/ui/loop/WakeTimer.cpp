#include "ui/loop/WakeTimer.h"

#include <utility>

namespace vorli::ui {

WakeTimer::WakeTimer(UniqueFunction<void()> wake)
    : descriptor_(openTimer()), notifier_(descriptor_, QSocketNotifier::Read), wake_(std::move(wake)) {
  QObject::connect(&notifier_, &QSocketNotifier::activated, &notifier_, [this] { fire(); });
}

WakeTimer::~WakeTimer() {
  notifier_.setEnabled(false);  // before its descriptor is closed
  closeTimer(descriptor_);
}

void WakeTimer::set(std::optional<double> moment) {
  if (moment == moment_) return;
  moment_ = moment;
  setTimer(descriptor_, moment);
}

void WakeTimer::fire() {
  if (!takeExpiry(descriptor_)) return;
  moment_.reset();
  wake_();
}

}  // namespace vorli::ui
