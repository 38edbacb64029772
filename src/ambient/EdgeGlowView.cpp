#include "ambient/EdgeGlowView.h"

#include "ambient/Palette.h"
#include "base/Animation.h"

#include <algorithm>

namespace vorli {
namespace {

constexpr double firstLight = 0.9;
constexpr double reddening = 0.96;
constexpr double leastOpacity = 0.22;
constexpr double opacitySpan = 0.23;
constexpr double mostOpacity = 0.45;
constexpr double calmShare = 0.7;    // share that a full calm takes away
constexpr double heldBreath = 0.85;  // share of the opacity that is left at the bottom of a breath

constexpr double changeSeconds = 1.2;
constexpr double breathSeconds = 4.5;  // one way

// Part of a change that is still missing.
double missing(double from, double to, double share) {
  return (from - to) * (1.0 - share);
}

}  // namespace

Colour EdgeGlowView::glowColour(double progress) {
  if (progress < reddening) {
    return blend(palette::orange, palette::red, (progress - firstLight) / (reddening - firstLight));
  }
  return blend(palette::red, palette::deepRed, (progress - reddening) / (1.0 - reddening));
}

double EdgeGlowView::bandOpacity(double progress) {
  if (progress < firstLight) return 0.0;
  return std::min((progress - firstLight) / (1.0 - firstLight) * opacitySpan + leastOpacity, mostOpacity);
}

double EdgeGlowView::viewOpacity(double progress, double calm) {
  return progress < firstLight ? 0.0 : 1.0 - calm * calmShare;
}

EdgeGlowView::EdgeGlowView(const Scheduler& clock, const EdgeGlowState& state)
    : clock_(clock), state_(state), breath_(clock, 0.0), target_(targetOf(state)) {}

void EdgeGlowView::appear() {
  withoutAnimation([this] { breath_ = 0.0; });
  withAnimation(Animation::easeInOut(breathSeconds).repeatedForever(Animation::Reversal::autoreverse),
                [this] { breath_ = 1.0; });
}

bool EdgeGlowView::stateChanged() {
  const Shown target = targetOf(state_);
  if (target == target_) return false;
  const double now = clock_.now();
  std::erase_if(changes_, [now](const Change& change) { return change.start + changeSeconds <= now; });
  changes_.push_back({now, target_, target});
  target_ = target;
  return true;
}

EdgeGlowView::Shown EdgeGlowView::targetOf(const EdgeGlowState& state) const {
  return {glowColour(state.progress), bandOpacity(state.progress), viewOpacity(state.progress, state.calm)};
}

EdgeGlowView::Shown EdgeGlowView::shown(double time) const {
  const Animation animation = Animation::easeInOut(changeSeconds);
  Shown shown = target_;
  for (const auto& [start, from, to] : changes_) {
    const double share = animation.progress(time - start);
    shown.colour.red += missing(from.colour.red, to.colour.red, share);
    shown.colour.green += missing(from.colour.green, to.colour.green, share);
    shown.colour.blue += missing(from.colour.blue, to.colour.blue, share);
    shown.bandOpacity += missing(from.bandOpacity, to.bandOpacity, share);
    shown.viewOpacity += missing(from.viewOpacity, to.viewOpacity, share);
  }
  return shown;
}

ports::GlowPicture EdgeGlowView::picture(double time, Breathing breathing) const {
  const Shown now = shown(time);
  const double breath = breathing == Breathing::held ? 1.0 : breath_.shown(time);
  return {now.colour, now.bandOpacity * now.viewOpacity * mix(heldBreath, 1.0, breath)};
}

double EdgeGlowView::settlesAt() const {
  return changes_.empty() ? -1.0 : changes_.back().start + changeSeconds;
}

}  // namespace vorli
