#pragma once

#include "flows/OnboardingFlowState.h"

#include <optional>
#include <string_view>
#include <vector>

namespace vorli {

/// The developer's bar in the preview of the first steps: shows any step and state. Main thread.
class PreviewPickerBar {
 public:
  struct Choice {
    std::string_view title;
    OnboardingFlowState::Step step = OnboardingFlowState::Step::helper;
    // Values that the helper step shows; an empty one means the real value.
    std::optional<OnboardingFlowState::Location> location = {};
    std::optional<InstallStatus> status = {};
  };

  explicit PreviewPickerBar(OnboardingFlowState& flowState) : flowState_(flowState) {}

  static const std::vector<Choice>& choices();
  bool isPicked(const Choice& choice) const;
  void pick(const Choice& choice);

 private:
  using Step = OnboardingFlowState::Step;
  using Location = OnboardingFlowState::Location;
  using Case = InstallStatus::Case;

  OnboardingFlowState& flowState_;
};

}  // namespace vorli
