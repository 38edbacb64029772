#include "popover/PopoverView.h"

namespace vorli {

bool PopoverView::isHelperEnabled() const {
  return helperManager_.status.get() == InstallStatus::Case::enabled;
}

bool PopoverView::canPolish() const {
  return animatedState.get() != RingState::healthy && isHelperEnabled() && !isReleasing;
}

std::string PopoverView::statusSentence() const {
  if (const auto& sentence = postClearSentence.get()) return *sentence;
  if (isReleasing) return std::string(texts_.polishing);
  if (showsReassurance()) return "Nothing to polish. Enjoy the calm.";
  switch (animatedState.get()) {
    case RingState::healthy:
      return std::string(texts_.healthy);
    case RingState::warming:
      return std::string(texts_.warming);
    case RingState::critical:
      return std::string(texts_.critical);
  }
  return {};
}

bool PopoverView::showsReassurance() const {
  return !postClearSentence.get() && !isReleasing && hovered && !canPolish() &&
         animatedState.get() == RingState::healthy;
}

bool PopoverView::showsOpenSettingsLink() const {
  const auto& sentence = postClearSentence.get();
  return sentence && (sentence->find(polishTexts_.approveHelperWords) != std::string::npos ||
                      sentence->find(polishTexts_.helperOutOfReachWords) != std::string::npos);
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
  if (const auto& name = closedByHandName_.get(); name && data) return CulpritSentence::closedByHand(*name);
  return data ? CulpritSentence(*data).segments() : std::vector<CulpritSentence::Segment>{};
}

std::optional<std::string> PopoverView::quitQuestion() const {
  const auto& name = confirmingQuitName_.get();
  if (!name) return std::nullopt;
  return "Quit " + *name + "?";
}

std::string_view PopoverView::polishToolTip() const {
  if (canPolish()) return texts_.polishToolTip;
  if (isHelperEnabled()) return texts_.nothingToPolishToolTip;
  return texts_.helperAwayToolTip;
}

std::string_view PopoverView::polishAccessibilityLabel() const {
  return canPolish() ? "Polish" : "Polish (disabled)";
}

std::string_view PopoverView::polishAccessibilityHint() const {
  return canPolish() ? "Frees memory and flushes caches. Takes about three seconds."
                     : texts_.nothingToPolishHint;
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
