#include "popover/DottedReassuranceRing.h"

#include "base/Animation.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace vorli {
namespace {

constexpr double visibleOpacity = 0.88;
constexpr double hiddenScale = 0.6;
constexpr double hiddenRingScale = 0.94;
constexpr double hidingSeconds = 0.16;

}  // namespace

DottedReassuranceRing::DottedReassuranceRing(const Scheduler& clock) : scale_(clock, hiddenRingScale) {
  shares_.reserve(count);
  for (std::size_t i = 0; i < count; ++i) shares_.emplace_back(clock, 0.0);
}

void DottedReassuranceRing::setVisible(bool visible) {
  if (visible == visible_) return;
  visible_ = visible;
  for (std::size_t i = 0; i < count; ++i) {
    const Animation animation =
        visible ? Animation::spring(0.34, 0.72).delayed(perDotDelay * static_cast<double>(i))
                : Animation::easeOut(hidingSeconds);
    withAnimation(animation, [&] { shares_[i] = visible ? 1.0 : 0.0; });
  }
  withAnimation(Animation::spring(0.42, 0.78), [&] { scale_ = visible ? 1.0 : hiddenRingScale; });
}

void DottedReassuranceRing::jumpTo(bool visible) {
  visible_ = visible;
  withoutAnimation([&] {
    for (auto& share : shares_) share = visible ? 1.0 : 0.0;
    scale_ = visible ? 1.0 : hiddenRingScale;
  });
}

DottedReassuranceRing::Dots DottedReassuranceRing::dots(double time, Movement movement) const {
  Dots dots;
  for (std::size_t i = 0; i < count; ++i) {
    const double turn = static_cast<double>(i) / static_cast<double>(count);
    const double angle = turn * 2.0 * std::numbers::pi - std::numbers::pi / 2.0;
    const double share = shares_[i].shown(time);
    dots[i] = {.x = radius * std::cos(angle),
               .y = radius * std::sin(angle),
               .opacity = std::clamp(visibleOpacity * share, 0.0, 1.0),
               .scale = movement == Movement::kept ? mix(hiddenScale, 1.0, share) : 1.0};
  }
  return dots;
}

double DottedReassuranceRing::scale(double time, Movement movement) const {
  return movement == Movement::kept ? scale_.shown(time) : 1.0;
}

double DottedReassuranceRing::restsAt() const {
  double rest = scale_.restsAt();
  for (const auto& share : shares_) rest = std::max(rest, share.restsAt());
  return rest;
}

}  // namespace vorli
