#include "ui/kit/MovingValue.h"

#include "ports/MotionPreference.h"
#include "ui/kit/PaperWindow.h"

#include <QWidget>
#include <utility>

namespace vorli::ui {
namespace {

const WindowMotion* movementAround(const QWidget& widget) {
  if (!widget.isVisible()) return nullptr;
  const auto* window = dynamic_cast<const PaperWindow*>(widget.window());
  return window ? window->movement() : nullptr;
}

}  // namespace

MovingValue::MovingValue(QWidget& widget, double value, std::function<void()> changed)
    : widget_(widget),
      changed_(changed ? std::move(changed) : [&widget] { widget.update(); }),
      target_(value) {}

MovingValue::~MovingValue() {
  stop();
}

void MovingValue::moveTo(double value, const Animation& animation) {
  if (value == target_) return;
  const auto* movement = movementAround(widget_);
  if (!movement || movement->preference.isReduced()) return jumpTo(value);
  startMoving(value, animation, movement->scheduler);
}

void MovingValue::fadeTo(double value, double seconds) {
  if (value == target_) return;
  const auto* movement = movementAround(widget_);
  if (!movement) return jumpTo(value);
  const double length = movement->preference.isReduced() ? reducedFadeSeconds : seconds;
  startMoving(value, Animation::timingCurve(windowEaseOut, length), movement->scheduler);
}

void MovingValue::jumpTo(double value) {
  const bool changes = shown() != value;
  stop();
  target_ = value;
  if (changes) changed_();
}

void MovingValue::startMoving(double value, const Animation& animation, Scheduler& scheduler) {
  scheduler_ = &scheduler;
  if (!moving_) moving_.emplace(scheduler, target_);
  target_ = value;
  withAnimation(animation, [this, value] { *moving_ = value; });
  if (timer_ == 0) nextFrame();
}

void MovingValue::nextFrame() {
  timer_ = scheduler_->after(windowFrameSeconds, [this] { frame(); });
}

void MovingValue::frame() {
  timer_ = 0;
  if (moving_->isMoving(scheduler_->now()) && widget_.isVisible()) {
    nextFrame();
  } else {
    stop();
  }
  changed_();  // last: it may destroy the widget
}

void MovingValue::stop() {
  if (timer_ != 0) scheduler_->cancel(std::exchange(timer_, 0));
  moving_.reset();
}

}  // namespace vorli::ui
