#include "ambient/PopoverView.h"

namespace vorli {

bool PopoverView::isHelperEnabled() const {
  return helperManager_.status.get() == InstallStatus::Case::enabled;
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

const std::optional<CulpritFormatter::CulpritData>& PopoverView::culprit() const {
  if (isCulpritStale_) {
    isCulpritStale_ = false;
    culprit_ = postClearSentence.get() || isReleasing
                   ? std::nullopt
                   : culpritFormatter_.culpritData(systemMonitor_.topMemoryHogs, animatedState);
  }
  return culprit_;
}

std::vector<CulpritSentence::Segment> PopoverView::culpritSegments() const {
  const auto& data = culprit();
  return data ? CulpritSentence(*data).segments() : std::vector<CulpritSentence::Segment>{};
}

std::optional<std::string> PopoverView::quitQuestion() const {
  const auto& name = confirmingQuitName_.get();
  if (!name) return std::nullopt;
  return "Quit " + *name + "?";
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

}  // namespace vorli
