#include "flows/OnboardingFlowState.h"

#include "settings/SetupRecord.h"
#include "settings/UserDefaults.h"

namespace vorli {

namespace {

constexpr const char* doneSeenKey = "hasSeenDoneScreen";

}  // namespace

OnboardingFlowState::OnboardingFlowState(ports::KeyValueStore& defaults) : defaults_(defaults) {}

void OnboardingFlowState::begin(Preview preview) {
  previewForce_ = preview == Preview::on;
  if (!previewForce_) recordEarlierUse();
  updateStep();
}

// A user who has run a build without first steps does not need them. A first launch stores a false, so that a
// launch after it is not taken for such use.
void OnboardingFlowState::recordEarlierUse() {
  if (defaults_.object(hasCompletedOnboardingKey) || defaults_.object(doneSeenKey)) return;
  const bool wasUsed = defaults_.object(lastLaunchedBuildKey).has_value();
  defaults_.setObject(hasCompletedOnboardingKey, wasUsed);
  if (wasUsed) defaults_.setObject(doneSeenKey, true);
}

void OnboardingFlowState::preview(Step selected, std::optional<Location> location,
                                  std::optional<InstallStatus> status) {
  previewLocationOverride = location;
  previewHelperStatusOverride = status;
  previewSelectedStep = selected;
}

void OnboardingFlowState::updateStep() {
  if (previewForce_ || !boolForKey(defaults_, hasCompletedOnboardingKey)) return setStep(Step::helper);
  setStep(boolForKey(defaults_, doneSeenKey) ? Step::finished : Step::done);
}

void OnboardingFlowState::completeHelperStep() {
  if (previewForce_) {
    previewSelectedStep = Step::done;
    return setStep(Step::done);
  }
  defaults_.setObject(hasCompletedOnboardingKey, true);
  updateStep();
}

void OnboardingFlowState::completeDoneStep() {
  if (previewForce_) {
    previewForce_ = false;
    return setStep(Step::finished);
  }
  defaults_.setObject(doneSeenKey, true);
  updateStep();
}

void OnboardingFlowState::setStep(Step value) {
  if (step.get() != value) step = value;
}

}  // namespace vorli
