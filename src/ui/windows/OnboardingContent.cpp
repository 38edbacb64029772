#include "ui/windows/OnboardingContent.h"

#include "ui/windows/OnboardingSheet.h"

namespace vorli::ui {

OnboardingContent::OnboardingContent(SheetWindow& window, const WindowSurroundings& surroundings,
                                     Scheduler& scheduler, const ports::MotionPreference& motion)
    : window_(window), surroundings_(surroundings), scheduler_(scheduler), motion_(motion) {}

OnboardingSheet& OnboardingContent::sheet() {
  if (!window_.hasSheet()) {
    sheet_ = new OnboardingSheet(surroundings_, scheduler_, motion_);
    window_.take(sheet_);
  }
  return *sheet_;
}

void OnboardingContent::installHelperStep(OnboardingView& view, PreviewPickerBar* bar) {
  sheet().show(view, bar);
}

void OnboardingContent::installDoneStep(OnboardingDoneView& view, PreviewPickerBar* bar) {
  sheet().show(view, bar);
}

}  // namespace vorli::ui
