#include "ui/PictureThrottle.h"

#include "ui/StatusPicturePainter.h"

namespace vorli::ui {

PictureThrottle::PictureThrottle(Scheduler& scheduler, Send send)
    : scheduler_(scheduler), send_(std::move(send)) {}

PictureThrottle::~PictureThrottle() {
  scheduler_.cancel(timer_);
}

void PictureThrottle::offer(const ports::StatusPicture& picture) {
  latest_ = rounded(picture);
  if (timer_) return;
  const double wait = sent_ ? nextAllowed_ - scheduler_.now() : 0.0;
  if (wait <= 0.0) {
    sendLatest();
  } else if (latest_ != sent_) {
    timer_ = scheduler_.after(wait, [this] {
      timer_ = 0;
      sendLatest();
    });
  }
}

void PictureThrottle::sendLatest() {
  if (latest_ == sent_) return;
  sent_ = latest_;
  nextAllowed_ = scheduler_.now() + intervalSeconds;
  send_(*sent_);
}

}  // namespace vorli::ui
