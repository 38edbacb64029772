#include "flows/PreviewPickerBar.h"

namespace vorli {

const std::vector<PreviewPickerBar::Choice>& PreviewPickerBar::choices() {
  static const std::vector<Choice> all{
      {.title = "Live"},
      {.title = "Elsewhere", .location = Location::elsewhere},
      {.title = "New", .location = Location::installed, .status = Case::notRegistered},
      {.title = "Unknown", .location = Location::installed, .status = InstallStatus::unknown(7)},
      {.title = "Approval", .location = Location::installed, .status = Case::requiresApproval},
      {.title = "Enabled", .location = Location::installed, .status = Case::enabled},
      {.title = "Missing", .location = Location::installed, .status = Case::notFound},
      {.title = "Done", .step = Step::done},
  };
  return all;
}

bool PreviewPickerBar::isPicked(const Choice& choice) const {
  if (choice.step != flowState_.previewSelectedStep.get()) return false;
  if (choice.step == Step::done) return true;
  return choice.location == flowState_.previewLocationOverride.get() &&
         choice.status == flowState_.previewHelperStatusOverride.get();
}

void PreviewPickerBar::pick(const Choice& choice) {
  flowState_.preview(choice.step, choice.location, choice.status);
}

}  // namespace vorli
