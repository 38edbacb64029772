#pragma once

#include "flows/OnboardingWindowController.h"
#include "ports/MotionPreference.h"
#include "ui/kit/WindowSurroundings.h"
#include "ui/windows/SheetWindow.h"

#include <QPointer>

namespace vorli::ui {

class OnboardingSheet;

/// Installs the first steps in their window: one sheet, created with the first of them, shows them all.
class OnboardingContent final : public OnboardingContentHost {
 public:
  OnboardingContent(SheetWindow& window, const WindowSurroundings& surroundings, Scheduler& scheduler,
                    const ports::MotionPreference& motion);

  void installHelperStep(OnboardingView& view, PreviewPickerBar* bar) override;
  void installDoneStep(OnboardingDoneView& view, PreviewPickerBar* bar) override;

 private:
  OnboardingSheet& sheet();

  SheetWindow& window_;
  const WindowSurroundings& surroundings_;
  Scheduler& scheduler_;
  const ports::MotionPreference& motion_;
  QPointer<OnboardingSheet> sheet_;  // the window's, while it has one
};

}  // namespace vorli::ui
