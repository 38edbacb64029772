#include "flows/OnboardingWindowController.h"

#include <utility>

namespace vorli {

OnboardingWindowController::OnboardingWindowController(const OnboardingWindowNeeds& needs)
    : viewNeeds_(needs.views),
      flowState_(needs.views.flowState),
      window_(needs.window),
      host_(needs.host),
      content_(needs.content),
      bar_(needs.views.flowState) {
  window_.setCloseHandler([this] { windowWillClose(); });
}

OnboardingWindowController::~OnboardingWindowController() {
  window_.setCloseHandler(nullptr);
}

void OnboardingWindowController::showIfNeeded() {
  flowState_.updateStep();
  if (flowState_.isSetupComplete()) {
    if (isOpen_) window_.close();
    return;
  }
  if (isOpen_) return bringToFront();

  isOpen_ = true;
  if (flowState_.previewForce()) flowState_.previewReachedStep();
  show(flowState_.step);
  window_.open("Vorli");
  host_.activateIgnoringOtherApps();
  cancellables_.push_back(
      flowState_.step.subscribeOnMainLoop(viewNeeds_.scheduler, [this](Step step) { stepChanged(step); }));
  cancellables_.push_back(
      flowState_.previewSelectedStep.subscribeOnMainLoop(viewNeeds_.scheduler, [this](Step step) {
        if (flowState_.previewForce()) show(step);
      }));
}

void OnboardingWindowController::bringToFront() {
  window_.centerAndBringToFront();
  host_.activateIgnoringOtherApps();
}

void OnboardingWindowController::stepChanged(Step step) {
  if (step == Step::finished) return window_.close();
  show(step);
}

void OnboardingWindowController::show(Step step) {
  if (std::exchange(shown_, step) == step) return;
  discardViews();
  auto* bar = flowState_.previewForce() ? &bar_ : nullptr;
  if (step == Step::helper) {
    helperView_ = std::make_unique<OnboardingView>(viewNeeds_);
    content_.installHelperStep(*helperView_, bar);
    helperView_->appear();
  } else {
    doneView_ = std::make_unique<OnboardingDoneView>(viewNeeds_.scheduler, flowState_, viewNeeds_.system);
    content_.installDoneStep(*doneView_, bar);
    doneView_->appear();
  }
}

void OnboardingWindowController::windowWillClose() {
  isOpen_ = false;
  shown_.reset();
  cancellables_.clear();
  discardViews();
}

// Destroys the views later, because a press of one of their own buttons may be the reason.
void OnboardingWindowController::discardViews() {
  viewNeeds_.scheduler.post([helper = std::move(helperView_), done = std::move(doneView_)] {});
}

}  // namespace vorli
