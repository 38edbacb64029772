#include "ui/status/PictureThrottle.h"

#include "ui/status/StatusPicturePainter.h"

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
  // The first picture is the empty dial of the start; the first real one, which follows at once, does not
  // wait.
  const double wait = sent_ ? intervalSeconds : 0.0;
  sent_ = latest_;
  nextAllowed_ = scheduler_.now() + wait;
  send_(*sent_);
}

}  // namespace vorli::ui
