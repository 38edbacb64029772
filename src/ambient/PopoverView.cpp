#include "ambient/PopoverView.h"

#include "base/Animation.h"
#include "polish/PolishTimings.h"

#include <utility>

namespace vorli {

PopoverView::PopoverView(const PolishServices& services)
    : PolishState(services.scheduler),
      helperManager_(services.helperManager),
      seenProgress_(services.systemMonitor.ringProgress),
      seenState_(ringState(seenProgress_)),
      polish_(*this, services),
      ringSubscription_(services.systemMonitor.ringProgress.subscribeOnMainLoop(
          services.scheduler, [this](double ringProgress) { followRing(ringProgress); })),
      tasks_(services.scheduler) {}

TaskHandle PopoverView::polishPressed() {
  return tasks_.spawn(polish_.handleTap());
}

bool PopoverView::canPolish() const {
  return animatedState.get() != RingState::healthy && isHelperEnabled() && !isReleasing;
}

std::string PopoverView::statusSentence() const {
  if (const auto& sentence = postClearSentence.get()) return *sentence;
  if (isReleasing) return "Polishing your Mac…";
  if (showsReassurance()) return "Nothing to polish. Enjoy the calm.";
  switch (animatedState.get()) {
    case RingState::healthy:
      return "Your Mac feels great.";
    case RingState::warming:
      return "Your Mac is starting to fill up.";
    case RingState::critical:
      return "Your Mac is full. Time to polish it.";
  }
  return {};
}

bool PopoverView::showsReassurance() const {
  return !postClearSentence.get() && !isReleasing && hovered && !canPolish() &&
         animatedState.get() == RingState::healthy;
}

bool PopoverView::showsOpenSettingsLink() const {
  const auto& sentence = postClearSentence.get();
  return sentence && (sentence->find("Approve Vorli in Login Items") != std::string::npos ||
                      sentence->find("Couldn't reach the helper") != std::string::npos);
}

std::string_view PopoverView::polishToolTip() const {
  if (canPolish()) return "Tap to polish your Mac";
  if (isHelperEnabled()) return "Your Mac is feeling great. No polish needed right now.";
  return "Background helper isn't ready. Open Settings, then General, then Login Items to approve Vorli.";
}

std::string_view PopoverView::polishAccessibilityLabel() const {
  return canPolish() ? "Polish" : "Polish (disabled)";
}

std::string_view PopoverView::polishAccessibilityHint() const {
  return canPolish() ? "Frees memory and flushes caches. Takes about three seconds."
                     : "Your Mac doesn't need polishing right now.";
}

std::optional<std::string> PopoverView::percentBanner() const {
  const auto& percentage = postClearPercentage.get();
  if (!percentage) return std::nullopt;
  return std::to_string(*percentage) + "% LIGHTER";
}

std::optional<std::string> PopoverView::percentBannerAccessibilityText() const {
  const auto& percentage = postClearPercentage.get();
  if (!percentage) return std::nullopt;
  return std::to_string(*percentage) + " percent lighter";
}

bool PopoverView::isHelperEnabled() const {
  return helperManager_.status.get() == InstallStatus::Case::enabled;
}

// A change during a polish is dropped, not kept for later: that alone holds the ring at zero.
void PopoverView::followRing(double ringProgress) {
  const RingState state = ringState(ringProgress);
  const bool progressChanged = std::exchange(seenProgress_, ringProgress) != ringProgress;
  const bool stateChanged = std::exchange(seenState_, state) != state;
  if (isReleasing) return;
  withAnimation(Animation::easeInOut(PolishTimings::follow), [&] {
    if (progressChanged) animatedProgress = ringProgress;
    if (stateChanged) animatedState = state;
  });
}

}  // namespace vorli
