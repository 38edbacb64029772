#include "ambient/AuroraField.h"

#include "ambient/Palette.h"
#include "base/Animation.h"
#include "base/Sleep.h"

#include <algorithm>

namespace vorli {
namespace {

constexpr double cloudRadius = 130.0;
constexpr double leakRadius = 100.0;
constexpr double leakBlur = 12.0;

constexpr double warmBlurAtRest = 28.0;
constexpr double bloomScaleAtRest = 0.4;
constexpr double bloomBlurAtRest = 14.0;
constexpr double bloomBlurOpen = 28.0;
constexpr double leakScaleAtRest = 0.3;

constexpr double secondsOfATurn = 18.0;

// Moments and durations of the sequence, in seconds; the moments count from its trigger.
struct AuroraTimings {
  static constexpr double sparks = 0.4;
  static constexpr double toRest = 2.6;
  static constexpr double bloomLeavesAfter = 0.1;
  static constexpr double rest = 0.75;
  static constexpr double sparksOut = 4.2;
};

AuroraGradient warmGradient(const Colour& stateColor) {
  return {{{{0.0, stateColor.withAlpha(0.55)},
            {0.5, stateColor.withAlpha(0.32)},
            {0.9, stateColor.withAlpha(0.0)}}},
          cloudRadius};
}

AuroraGradient bloomGradient() {
  return {{{{0.0, palette::teal.withAlpha(0.55)},
            {0.5, palette::green.withAlpha(0.36)},
            {0.9, palette::green.withAlpha(0.0)}}},
          cloudRadius};
}

AuroraGradient leakGradient() {
  return {{{{0.0, palette::white.withAlpha(0.88)},
            {0.35, palette::paleGreenWhite.withAlpha(0.55)},
            {0.8, palette::white.withAlpha(0.0)}}},
          leakRadius};
}

// Fraction of the cloud's opacity that is left by the calm after a polish.
double calmFactor(double calmIntensity) {
  return std::max(1.0 - calmIntensity * 0.55, 0.15);
}

}  // namespace

AuroraField::AuroraField(Scheduler& scheduler)
    : scheduler_(scheduler),
      rotation_(scheduler, 0.0),
      warmScale_(scheduler, 1.0),
      warmOpacity_(scheduler, 1.0),
      warmBlur_(scheduler, warmBlurAtRest),
      bloomScale_(scheduler, bloomScaleAtRest),
      bloomOpacity_(scheduler, 0.0),
      bloomBlur_(scheduler, bloomBlurAtRest),
      leakScale_(scheduler, leakScaleAtRest),
      leakOpacity_(scheduler, 0.0),
      tasks_(scheduler) {}

void AuroraField::appear() {
  withAnimation(Animation::linear(secondsOfATurn).repeatedForever(Animation::Reversal::none),
                [this] { rotation_ = 360.0; });
}

void AuroraField::clearTriggered() {
  setOut();
  withAnimation(Animation::easeOut(0.1), [this] { warmScale_ = 1.08; });
  withAnimation(Animation::easeOut(0.7).delayed(0.1), [this] {
    warmScale_ = 1.5;
    warmOpacity_ = 0.3;
    warmBlur_ = 48.0;
  });
  withAnimation(Animation::easeInOut(0.4).delayed(0.5), [this] {
    leakOpacity_ = 0.95;
    leakScale_ = 1.0;
  });
  withAnimation(Animation::easeOut(0.6).delayed(0.9), [this] {
    leakOpacity_ = 0.0;
    leakScale_ = 1.6;
  });
  withAnimation(Animation::easeOut(0.9).delayed(0.8), [this] {
    bloomOpacity_ = 1.0;
    bloomScale_ = 1.0;
    bloomBlur_ = bloomBlurOpen;
  });
  withAnimation(Animation::easeIn(0.5).delayed(1.7), [this] {
    warmOpacity_ = 0.0;
    warmScale_ = 1.65;
  });
  sparkStartDate_ = scheduler_.now() + AuroraTimings::sparks;
  tasks_.spawn(lateSteps());
  restsAt_ = scheduler_.now() + AuroraTimings::toRest + AuroraTimings::bloomLeavesAfter + AuroraTimings::rest;
}

void AuroraField::setOut() {
  withoutAnimation([this] {
    warmScale_ = 1.0;
    warmOpacity_ = 1.0;
    warmBlur_ = warmBlurAtRest;
    bloomScale_ = bloomScaleAtRest;
    bloomOpacity_ = 0.0;
    bloomBlur_ = bloomBlurAtRest;
    leakScale_ = leakScaleAtRest;
    leakOpacity_ = 0.0;
  });
}

// Runs on when a new sequence is triggered: its steps then act on the new one.
Task<> AuroraField::lateSteps() {
  co_await sleepFor(scheduler_, AuroraTimings::toRest);
  leaveToRest();
  co_await sleepFor(scheduler_, AuroraTimings::sparksOut - AuroraTimings::toRest);
  sparkStartDate_ = std::nullopt;
}

void AuroraField::leaveToRest() {
  const Animation leaving = Animation::easeInOut(AuroraTimings::rest);
  withAnimation(leaving, [this] {
    warmScale_ = 1.0;
    warmOpacity_ = 1.0;
    warmBlur_ = warmBlurAtRest;
  });
  withAnimation(leaving.delayed(AuroraTimings::bloomLeavesAfter), [this] {
    bloomOpacity_ = 0.0;
    bloomBlur_ = bloomBlurAtRest;
    bloomScale_ = bloomScaleAtRest;
  });
}

AuroraPicture AuroraField::picture(double time, const Colour& stateColor, double calmIntensity,
                                   Movement movement) const {
  const bool moves = movement == Movement::kept;
  return {
      .warmCloud = {.gradient = warmGradient(stateColor),
                    .blur = moves ? warmBlur_.shown(time) : warmBlurAtRest,
                    .scale = moves ? warmScale_.shown(time) : 1.0,
                    .opacity = warmOpacity_.shown(time) * calmFactor(calmIntensity),
                    .rotationDegrees = rotation_.shown(time)},
      .bloom = {.gradient = bloomGradient(),
                .blur = moves ? bloomBlur_.shown(time) : bloomBlurOpen,
                .scale = moves ? bloomScale_.shown(time) : 1.0,
                .opacity = bloomOpacity_.shown(time),
                .rotationDegrees = -rotation_.shown(time)},
      .leak = {.gradient = leakGradient(),
               .blur = leakBlur,
               .scale = moves ? leakScale_.shown(time) : 1.0,
               .opacity = leakOpacity_.shown(time)},
      .sparks = moves ? WhiteSparkShower{.startDate = sparkStartDate_}.sparks(time) : std::nullopt,
  };
}

}  // namespace vorli
