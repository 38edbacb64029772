#include "ambient/EdgeGlowController.h"

#include <limits>

namespace vorli {

EdgeGlowController::EdgeGlowController(const EdgeGlowNeeds& needs) : needs_(needs), tasks_(needs.scheduler) {}

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
  observers_.clear();
  if (hasWindow_) needs_.window.remove();
  hasWindow_ = false;
  view_.reset();
}

void EdgeGlowController::buildWindow() {
  hasWindow_ = needs_.window.build(EdgeGlowView::bandDepthPoints);
  view_.emplace(needs_.scheduler, state_);
  view_->appear();
  animatedUntil_ = view_->settlesAt();
}

void EdgeGlowController::followState() {
  // The value comes from the monitor and not with the sample: the ring is reckoned after it.
  cancellables_.push_back(
      needs_.systemMonitor.memory.subscribeOnMainLoop(needs_.scheduler, [this](const MemorySnapshot&) {
        state_.progress = needs_.systemMonitor.ringProgress.get();
        show();
      }));
  cancellables_.push_back(
      needs_.clearState.calmIntensity.subscribeOnMainLoop(needs_.scheduler, [this](double calm) {
        state_.calm = calm;
        show();
      }));
  state_.progress = needs_.systemMonitor.ringProgress.get();
  state_.calm = needs_.clearState.calmIntensity.get();
  view_->stateChanged();
  animate();
}

void EdgeGlowController::observeScreens() {
  observers_.push_back(needs_.window.subscribeToScreens([this] { checkScreenSoon(); }));
  observers_.push_back(needs_.workspace.subscribe(
      ports::ApplicationEvent::activated, [this](const ports::RunningApplication&) { checkScreenSoon(); }));
  observers_.push_back(needs_.workspace.subscribeToSpaceChanges([this] { checkScreenSoon(); }));
  observers_.push_back(needs_.motion.subscribe([this] { preferenceChanged(); }));
}

void EdgeGlowController::preferenceChanged() {
  animatedUntil_ = -2.0;  // another picture even where the times are the same
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

// Unlit and settled, the picture is at rest, whatever the breath would do. One that breathes takes up every
// further change by itself.
void EdgeGlowController::animate() {
  if (!hasWindow_) return;
  const bool breathes = view_->isLit() && !needs_.motion.isReduced();
  const double restsAt = breathes ? std::numeric_limits<double>::infinity() : view_->settlesAt();
  if (restsAt == animatedUntil_) return;
  animatedUntil_ = restsAt;
  needs_.window.animate([this](double time) { return view_->picture(time, breathing()); }, restsAt);
}

EdgeGlowView::Breathing EdgeGlowController::breathing() const {
  return needs_.motion.isReduced() ? EdgeGlowView::Breathing::held : EdgeGlowView::Breathing::running;
}

}  // namespace vorli
