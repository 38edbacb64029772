#pragma once

#include "base/Scheduler.h"
#include "base/Subscription.h"
#include "flows/OnboardingDoneView.h"
#include "flows/OnboardingFlowState.h"
#include "flows/OnboardingView.h"
#include "flows/PreviewPickerBar.h"
#include "ports/ApplicationHost.h"
#include "ports/SheetWindow.h"

#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace vorli {

/// Installs the views of the first steps in their window, before it opens and while it is open. A view lives
/// until one turn of the main loop after it was replaced, or its window closed.
class OnboardingContentHost {
 public:
  virtual ~OnboardingContentHost() = default;

  // `bar` is null outside of the preview.
  virtual void installHelperStep(OnboardingView& view, PreviewPickerBar* bar) = 0;
  virtual void installDoneStep(OnboardingDoneView& view, PreviewPickerBar* bar) = 0;
};

struct OnboardingWindowNeeds {
  OnboardingViewNeeds views;
  ports::SheetWindow& window;
  ports::ApplicationHost& host;
  OnboardingContentHost& content;
};

/// The window of the first steps: shows the step that the user has reached, and closes after the last one.
/// Main thread.
class OnboardingWindowController {
 public:
  explicit OnboardingWindowController(const OnboardingWindowNeeds& needs);
  ~OnboardingWindowController();
  OnboardingWindowController(const OnboardingWindowController&) = delete;
  OnboardingWindowController& operator=(const OnboardingWindowController&) = delete;

  /// Shows the window unless setup is complete; an open one comes to the front.
  void showIfNeeded();

  bool isOpen() const { return isOpen_; }
  /// Centres the open window and brings it to the front.
  void bringToFront();

 private:
  using Step = OnboardingFlowState::Step;

  void stepChanged(Step step);
  void show(Step step);
  void windowWillClose();
  void discardViews();

  const OnboardingViewNeeds viewNeeds_;
  OnboardingFlowState& flowState_;
  ports::SheetWindow& window_;
  ports::ApplicationHost& host_;
  OnboardingContentHost& content_;
  PreviewPickerBar bar_;
  bool isOpen_ = false;
  std::optional<Step> shown_;
  std::unique_ptr<OnboardingView> helperView_;
  std::unique_ptr<OnboardingDoneView> doneView_;
  std::vector<Subscription> cancellables_;  // while the window is open
};

}  // namespace vorli
