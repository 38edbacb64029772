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

// Of the sequence, from its trigger.
struct Timings {
  static constexpr double sparks = 0.4;
  static constexpr double toRest = 2.6;
  static constexpr double bloomLeavesAfter = 0.1;
  static constexpr double rest = 0.75;
  static constexpr double sparksOut = 4.2;
};

constexpr Colour white{1.0, 1.0, 1.0, 1.0};

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
  return {{{{0.0, white.withAlpha(0.88)},
            {0.35, palette::paleGreenWhite.withAlpha(0.55)},
            {0.8, white.withAlpha(0.0)}}},
          leakRadius};
}

// The calm after a polish dims the cloud, and leaves this much of it.
double calmFactor(double calmIntensity) {
  return std::max(1.0 - calmIntensity * 0.55, 0.15);
}

}  // namespace

AuroraField::AuroraField(Scheduler& scheduler)
    : rotation(scheduler, 0.0),
      warmScale(scheduler, 1.0),
      warmOpacity(scheduler, 1.0),
      warmBlur(scheduler, warmBlurAtRest),
      bloomScale(scheduler, bloomScaleAtRest),
      bloomOpacity(scheduler, 0.0),
      bloomBlur(scheduler, bloomBlurAtRest),
      leakScale(scheduler, leakScaleAtRest),
      leakOpacity(scheduler, 0.0),
      scheduler_(scheduler),
      tasks_(scheduler) {}

void AuroraField::appear() {
  withAnimation(Animation::linear(secondsOfATurn).repeatedForever(Animation::Reversal::none),
                [this] { rotation = 360.0; });
}

void AuroraField::clearTriggered() {
  setOut();
  withAnimation(Animation::easeOut(0.1), [this] { warmScale = 1.08; });
  withAnimation(Animation::easeOut(0.7).delayed(0.1), [this] {
    warmScale = 1.5;
    warmOpacity = 0.3;
    warmBlur = 48.0;
  });
  withAnimation(Animation::easeInOut(0.4).delayed(0.5), [this] {
    leakOpacity = 0.95;
    leakScale = 1.0;
  });
  withAnimation(Animation::easeOut(0.6).delayed(0.9), [this] {
    leakOpacity = 0.0;
    leakScale = 1.6;
  });
  withAnimation(Animation::easeOut(0.9).delayed(0.8), [this] {
    bloomOpacity = 1.0;
    bloomScale = 1.0;
    bloomBlur = bloomBlurOpen;
  });
  withAnimation(Animation::easeIn(0.5).delayed(1.7), [this] {
    warmOpacity = 0.0;
    warmScale = 1.65;
  });
  sparkStartDate = scheduler_.now() + Timings::sparks;
  tasks_.spawn(lateSteps());
  restsAt_ = scheduler_.now() + Timings::toRest + Timings::bloomLeavesAfter + Timings::rest;
}

void AuroraField::setOut() {
  withoutAnimation([this] {
    warmScale = 1.0;
    warmOpacity = 1.0;
    warmBlur = warmBlurAtRest;
    bloomScale = bloomScaleAtRest;
    bloomOpacity = 0.0;
    bloomBlur = bloomBlurAtRest;
    leakScale = leakScaleAtRest;
    leakOpacity = 0.0;
  });
}

// Not cancelled by the next trigger: they then act on its sequence.
Task<> AuroraField::lateSteps() {
  co_await sleepFor(scheduler_, Timings::toRest);
  leaveToRest();
  co_await sleepFor(scheduler_, Timings::sparksOut - Timings::toRest);
  sparkStartDate = std::nullopt;
}

void AuroraField::leaveToRest() {
  const Animation leaving = Animation::easeInOut(Timings::rest);
  withAnimation(leaving, [this] {
    warmScale = 1.0;
    warmOpacity = 1.0;
    warmBlur = warmBlurAtRest;
  });
  withAnimation(leaving.delayed(Timings::bloomLeavesAfter), [this] {
    bloomOpacity = 0.0;
    bloomBlur = bloomBlurAtRest;
    bloomScale = bloomScaleAtRest;
  });
}

AuroraPicture AuroraField::picture(double time, const Colour& stateColor, double calmIntensity,
                                   Movement movement) const {
  const bool moves = movement == Movement::kept;
  return {
      .warmCloud = {.gradient = warmGradient(stateColor),
                    .blur = moves ? warmBlur.shown(time) : warmBlurAtRest,
                    .scale = moves ? warmScale.shown(time) : 1.0,
                    .opacity = warmOpacity.shown(time) * calmFactor(calmIntensity),
                    .rotationDegrees = rotation.shown(time)},
      .bloom = {.gradient = bloomGradient(),
                .blur = moves ? bloomBlur.shown(time) : bloomBlurOpen,
                .scale = moves ? bloomScale.shown(time) : 1.0,
                .opacity = bloomOpacity.shown(time),
                .rotationDegrees = -rotation.shown(time)},
      .leak = {.gradient = leakGradient(),
               .blur = leakBlur,
               .scale = moves ? leakScale.shown(time) : 1.0,
               .opacity = leakOpacity.shown(time)},
      .sparks = moves ? WhiteSparkShower{.startDate = sparkStartDate}.sparks(time) : std::nullopt,
  };
}

}  // namespace vorli
