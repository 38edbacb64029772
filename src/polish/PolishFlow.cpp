#include "polish/PolishFlow.h"

#include "ambient/Notifications.h"
#include "ambient/RingGradient.h"
#include "base/Animation.h"
#include "base/Sleep.h"
#include "polish/AppQuitter.h"
#include "polish/PolishOutcome.h"
#include "polish/PopoverLog.h"

#include <memory>
#include <optional>
#include <string>

namespace vorli {

namespace {

constexpr CubicBezier drainCurve{0.55, 0.055, 0.675, 0.19};  // starts slowly
constexpr double grownScale = 1.08;
constexpr double growDamping = 0.55;

}  // namespace

PolishFlow::PolishFlow(PolishState& state, const PolishServices& services)
    : state_(state),
      services_(services),
      race_(services.scheduler, services.helperManager, services.memory, services.calendar),
      tasks_(services.scheduler) {}

Task<> PolishFlow::handleTap() {
  Scheduler& scheduler = services_.scheduler;
  logEntry();
  if (state_.isReleasing || state_.animatedState.get() == RingState::healthy) co_return;

  const bool helperReady = isHelperEnabled();
  const bool audioActive = services_.audio.isAudioActive();
  const PolishPace& pace = helperReady ? PolishTimings::full : PolishTimings::gentle;
  enterPolish(helperReady, audioActive);
  const TaskHandle watching = tasks_.spawn(watchdog());
  performPressCeremony();
  drainRing();

  const auto before = std::make_shared<SnapshotBox>();
  const double startedAt = scheduler.now();
  const HelperWorkRequest work{.helperReady = helperReady,
                               .audioActive = audioActive,
                               .minDisplayTime = pace.minDisplayTime,
                               .startedAt = startedAt,
                               .snapshotBox = before};
  const bool reachable = co_await race_.runHelperWorkRacingDisplayBudget(work);
  const double displayedUntil = startedAt + pace.minDisplayTime;
  if (scheduler.now() < displayedUntil) co_await sleepFor(scheduler, displayedUntil - scheduler.now());
  showOutcome(helperReady, reachable, audioActive, *before);

  growRing();
  services_.clearState.runCeremony(PolishTimings::calmRise, PolishTimings::calmDecay);
  co_await sleepFor(scheduler, PolishTimings::untilShrink);
  shrinkRing();
  co_await sleepFor(scheduler, pace.untilClose);
  closePopover();

  co_await sleepFor(scheduler, pace.hold);
  raiseRingToTruth(pace, *before);
  co_await sleepFor(scheduler, pace.untilRingStands);
  co_await sleepFor(scheduler, PolishTimings::sentenceStays);
  leavePolish();
  watching.cancel();
}

void PolishFlow::logEntry() const {
  popoverLog.log(
      "handleTap entered (isReleasing=%{bool,public}d state=%{public}s progress=%{public}s "
      "helperStatus=%{public}s)",
      state_.isReleasing.get(), description(state_.animatedState), twoDecimals(state_.animatedProgress),
      services_.helperManager.status->description());
}

bool PolishFlow::isHelperEnabled() const {
  return services_.helperManager.status.get() == InstallStatus::Case::enabled;
}

void PolishFlow::enterPolish(bool helperReady, bool audioActive) {
  state_.isReleasing = true;
  popoverLog.log(
      "handleTap: setting isReleasing=true. helperReady=%{bool,public}d audioActive=%{bool,public}d",
      helperReady, audioActive);
  if (!helperReady) state_.postClearSentence = std::string(services_.texts.approveHelper);
  if (audioActive) popoverLog.log("handleTap: audio active — purge will be skipped");
}

void PolishFlow::performPressCeremony() {
  if (services_.settings.hapticFeedback())
    services_.haptics.performFeedbackPattern(ports::FeedbackPattern::generic, ports::PerformanceTime::now);
  services_.celebrationGlow.celebrate(ringGradientColour(state_.animatedProgress.shown()));
  state_.auroraClearTrigger = state_.auroraClearTrigger + 1;
  if (services_.settings.quitHiddenAppsOnClear()) quitHiddenApps(services_.workspace, services_.bundle);
}

void PolishFlow::drainRing() {
  withAnimation(Animation::timingCurve(drainCurve, PolishTimings::drain), [this] {
    state_.setAnimatedProgress(0.0);
    state_.setAnimatedState(RingState::healthy);
  });
}

void PolishFlow::showOutcome(bool helperReady, bool reachable, bool audioActive, const SnapshotBox& before) {
  state_.postClearPercentage = std::nullopt;
  if (!helperReady) return;  // its sentence is already shown
  if (!reachable) {
    state_.postClearSentence = std::string(services_.texts.helperOutOfReach);
  } else if (audioActive) {
    state_.postClearSentence = std::string(services_.texts.soundSpared);
  } else {
    state_.postClearSentence = std::string(services_.texts.polished);
    // A slow purge may still be running, so even a successful polish may have no figure.
    const MemorySnapshot now = sampleMemory(services_.memory, services_.calendar);
    state_.postClearPercentage = lighterPercentage(before.snapshot, now);
  }
}

void PolishFlow::growRing() {
  withAnimation(Animation::spring(PolishTimings::growResponse, growDamping),
                [this] { state_.celebrationScale = grownScale; });
}

void PolishFlow::shrinkRing() {
  withAnimation(Animation::easeInOut(PolishTimings::shrink), [this] { state_.celebrationScale = 1.0; });
}

void PolishFlow::closePopover() {
  services_.notifications.post(VorliClosePopover{});
  popoverLog.log("handleTap: posted auto-close notification");
}

void PolishFlow::raiseRingToTruth(const PolishPace& pace, const SnapshotBox& before) {
  services_.systemMonitor.refresh();
  const double progress = services_.systemMonitor.ringProgress;
  logSettledRing(progress, before.snapshot, services_.systemMonitor.memory);
  withAnimation(Animation::easeInOut(pace.rise), [&] {
    state_.setAnimatedProgress(progress);
    state_.setAnimatedState(ringState(progress));
  });
}

void PolishFlow::leavePolish() {
  withAnimation(Animation::easeInOut(PolishTimings::sentenceFade), [this] {
    state_.postClearSentence = std::nullopt;
    state_.postClearPercentage = std::nullopt;
  });
  state_.isReleasing = false;
  popoverLog.log("handleTap: release flag cleared. animatedProgress=%{public}s",
                 twoDecimals(state_.animatedProgress));
}

// Ignores how its sleep ended: at the end of a polish the flag is cleared before this task is cancelled. The
// ring stays where it is until the monitor's next change.
Task<> PolishFlow::watchdog() {
  co_await sleepFor(services_.scheduler, PolishTimings::watchdog);
  if (!state_.isReleasing) co_return;
  popoverLog.log("handleTap watchdog: isReleasing still true after 18s — forcing reset");
  state_.isReleasing = false;
  state_.postClearSentence = std::nullopt;
  state_.postClearPercentage = std::nullopt;
}

}  // namespace vorli
