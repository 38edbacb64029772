#include "ambient/EdgeGlowController.h"

#include <cmath>
#include <limits>
#include <utility>

namespace vorli {

EdgeGlowController::EdgeGlowController(const EdgeGlowNeeds& needs) : needs_(needs), tasks_(needs.scheduler) {}

EdgeGlowController::~EdgeGlowController() {
  needs_.scheduler.cancel(extension_);
}

void EdgeGlowController::enable() {
  if (enabled_) return;
  enabled_ = true;
  buildWindow();
  followState();
  observeScreens();
}

void EdgeGlowController::disable() {
  enabled_ = false;
  cancellables_.clear();
  calmPace_.reset();
  calm_.cancel();
  observers_.clear();
  needs_.scheduler.cancel(std::exchange(extension_, 0));
  if (hasWindow_) needs_.window.remove();
  hasWindow_ = false;
  view_.reset();
}

void EdgeGlowController::buildWindow() {
  hasWindow_ = needs_.window.build(EdgeGlowView::bandDepthPoints);
  view_.emplace(needs_.scheduler, state_);
  view_->appear();
  animatedUntil_.reset();
}

void EdgeGlowController::followState() {
  // Read from the monitor when the main loop delivers the sample: the ring is computed only after the sample
  // is published.
  cancellables_.push_back(
      needs_.systemMonitor.memory.subscribeOnMainLoop(needs_.scheduler, [this](const MemorySnapshot&) {
        state_.progress = needs_.systemMonitor.ringProgress.get();
        show();
        followCalm();
      }));
  state_.progress = needs_.systemMonitor.ringProgress.get();
  state_.calm = needs_.clearState.calmIntensity.get();
  view_->stateChanged();
  animate();
  followCalm();
}

// An unlit picture does not depend on the calm, so only a lit one follows it closely.
void EdgeGlowController::followCalm() {
  const CalmPace pace = view_->isLit() ? CalmPace::display : CalmPace::dial;
  if (calmPace_ == pace) return;
  calmPace_ = pace;
  calm_ = needs_.clearState.calmIntensity.subscribe(pace, [this](double calm) {
    state_.calm = calm;
    show();
  });
}

void EdgeGlowController::observeScreens() {
  observers_.push_back(needs_.window.subscribeToScreens([this] { checkScreenSoon(); }));
  observers_.push_back(needs_.workspace.subscribe(
      ports::ApplicationEvent::activated, [this](const ports::RunningApplication&) { checkScreenSoon(); }));
  observers_.push_back(needs_.workspace.subscribeToSpaceChanges([this] { checkScreenSoon(); }));
  observers_.push_back(needs_.motion.subscribe([this] { preferenceChanged(); }));
}

void EdgeGlowController::preferenceChanged() {
  animatedUntil_.reset();  // forces a new picture even when the times are equal
  animate();
}

void EdgeGlowController::checkScreenSoon() {
  tasks_.spawn(checkScreen());
}

Task<> EdgeGlowController::checkScreen() {
  if (!enabled_ || !hasWindow_) co_return;
  const auto screen = needs_.window.mainScreen();
  if (screen && *screen != needs_.window.frame()) needs_.window.setFrame(*screen);
}

void EdgeGlowController::show() {
  if (view_->stateChanged()) animate();
}

// An unlit picture is at rest once it has settled, whatever the breath does. Frames that are being drawn show
// every further change: a breathing picture is redrawn all the time, and any other receives its new end time
// only when it reaches the current one.
void EdgeGlowController::animate() {
  if (!hasWindow_) return;
  const double now = needs_.scheduler.now();
  const bool breathes = view_->isLit() && !needs_.motion.isReduced();
  const double restsAt = breathes ? std::numeric_limits<double>::infinity() : view_->settlesAt();
  if (restsAt == animatedUntil_) return;
  if (!animatedUntil_ && !view_->isLit() && restsAt <= now) return;  // nothing to show
  if (!breathes && animatedUntil_ && std::isfinite(*animatedUntil_) && now < *animatedUntil_) {
    return extendAt(*animatedUntil_);
  }
  animatedUntil_ = restsAt;
  needs_.window.animate([this](double time) { return view_->picture(time, breathing()); }, restsAt);
}

void EdgeGlowController::extendAt(double time) {
  if (extension_ != 0) return;
  extension_ = needs_.scheduler.after(time - needs_.scheduler.now(), [this] {
    extension_ = 0;
    animate();
  });
}

EdgeGlowView::Breathing EdgeGlowController::breathing() const {
  return needs_.motion.isReduced() ? EdgeGlowView::Breathing::held : EdgeGlowView::Breathing::running;
}

}  // namespace vorli
