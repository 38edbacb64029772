#pragma once

#include "base/Published.h"
#include "helper/InstallStatus.h"
#include "ports/KeyValueStore.h"

#include <optional>

namespace vorli {

/// The step of the setup that the user has reached, as stored in the preferences. Main thread.
class OnboardingFlowState {
 public:
  enum class Step { helper, done, finished };
  /// A developer's mode that shows every state of the first steps. It neither reads nor writes the
  /// preferences.
  enum class Preview { off, on };
  /// Whether the program was started from its install location. Only an installed one can have a helper.
  enum class Location { installed, elsewhere };

  explicit OnboardingFlowState(ports::KeyValueStore& defaults);

  Published<Step, OnboardingFlowState> step{Step::helper};

  // Used in preview only. An empty override leaves the real value.
  Published<std::optional<InstallStatus>, OnboardingFlowState> previewHelperStatusOverride;
  Published<std::optional<Location>, OnboardingFlowState> previewLocationOverride;
  Published<Step, OnboardingFlowState> previewSelectedStep{Step::helper};

  /// Call once, at launch, before another class stores a preference: on a first launch, none is stored.
  void begin(Preview preview);
  bool previewForce() const { return previewForce_; }
  /// Shows `step` as it would be at that place and with that status.
  void preview(Step step, std::optional<Location> location, std::optional<InstallStatus> status);
  /// Selects the reached step in the preview.
  void previewReachedStep() { previewSelectedStep = step.get(); }

  void updateStep();
  void completeHelperStep();
  void completeDoneStep();

  /// True once the user has completed the first steps. The only place that decides this.
  bool isSetupComplete() const { return step.get() == Step::finished; }

 private:
  void recordEarlierUse();
  void setStep(Step value);

  ports::KeyValueStore& defaults_;
  bool previewForce_ = false;
};

}  // namespace vorli
