#pragma once

#include "base/Animated.h"
#include "base/HostSystem.h"
#include "base/Scheduler.h"
#include "flows/OnboardingFlowState.h"
#include "flows/OnboardingTexts.h"

#include <string_view>

namespace vorli {

/// The done step: a word of thanks. Its picture is a dial whose ticks appear one after the other, then a
/// check mark that is drawn and pops. Main thread.
class OnboardingDoneView {
 public:
  static constexpr int tickCount = 12;
  static constexpr double tickSeconds = 0.024;
  static constexpr double checkSeconds = 0.36;
  static constexpr double smallestCheck = 0.86;

  OnboardingDoneView(Scheduler& scheduler, OnboardingFlowState& flowState, HostSystem system = hostSystem);

  /// Starts the picture.
  void appear();

  std::string_view title() const { return OnboardingTexts::doneTitle; }
  std::string_view sentence() const { return texts_.doneSentence; }
  std::string_view buttonTitle() const { return OnboardingTexts::startUsing; }
  void buttonPressed() { flowState_.completeDoneStep(); }

  /// Number of ticks that are shown, with the part of the next one.
  PublishedAnimated<double, OnboardingDoneView> ticks;
  /// Drawn part of the check mark, from 0 to 1.
  PublishedAnimated<double, OnboardingDoneView> checkDrawn;
  /// Size of the check mark; 1 at rest.
  PublishedAnimated<double, OnboardingDoneView> checkPop;

 private:
  OnboardingFlowState& flowState_;
  const OnboardingTexts& texts_;
};

}  // namespace vorli
