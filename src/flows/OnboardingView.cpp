#include "flows/OnboardingView.h"

#include "base/AnyChange.h"
#include "base/Sleep.h"
#include "flows/ProductAddresses.h"
#include "helper/ApplicationsFolder.h"

#include <utility>

namespace vorli {

namespace {

using Location = OnboardingFlowState::Location;

constexpr const char* applicationsFolderURL = "file:///Applications/";

}  // namespace

OnboardingView::OnboardingView(const OnboardingViewNeeds& needs)
    : haloBreath(needs.scheduler, 0.0),
      scheduler_(needs.scheduler),
      helperManager_(needs.helperManager),
      flowState_(needs.flowState),
      bundle_(needs.bundle),
      announcements_(needs.announcements),
      links_(needs.links),
      fileViewer_(needs.fileViewer),
      installPage_(needs.installPage),
      requestNotificationAuthorization_(needs.requestNotificationAuthorization),
      system_(needs.system),
      allTexts_(ofSystem<OnboardingTexts>(needs.system)),
      tasks_(needs.scheduler) {}

void OnboardingView::appear() {
  helperManager_.refreshStatus();
  withAnimation(Animation::easeInOut(haloSeconds).repeatedForever(Animation::Reversal::autoreverse),
                [this] { haloBreath = 1.0; });
  announce();
  statusSubscription_ = onAnyChange(
      scheduler_, [this] { statusChanged(); }, helperManager_.status, helperManager_.lacksPrompt,
      isInstalling, flowState_.previewHelperStatusOverride, flowState_.previewLocationOverride);
}

void OnboardingView::statusChanged() {
  announce();
  contentChanged_.deliver();
}

void OnboardingView::announce() {
  std::string text = std::string(title()) + ". " + std::string(sentence());
  if (text == lastAnnouncedSentence_) return;
  lastAnnouncedSentence_ = std::move(text);
  announcements_.post(lastAnnouncedSentence_);
}

InstallStatus OnboardingView::status() const {
  const auto& override = flowState_.previewHelperStatusOverride.get();
  return flowState_.previewForce() && override ? *override : helperManager_.status.get();
}

Location OnboardingView::location() const {
  const auto& override = flowState_.previewLocationOverride.get();
  if (flowState_.previewForce() && override) return *override;
  return isAppInApplicationsFolder(bundle_) ? Location::installed : Location::elsewhere;
}

OnboardingView::State OnboardingView::state() const {
  if (location() == Location::elsewhere) return State::notInstalled;
  switch (status().which()) {
    case InstallStatus::Case::unknown:
    case InstallStatus::Case::notRegistered:
      return State::notRegistered;
    case InstallStatus::Case::requiresApproval:
      return State::requiresApproval;
    case InstallStatus::Case::enabled:
      return State::enabled;
    case InstallStatus::Case::notFound:
      return State::notFound;
  }
  return State::notRegistered;
}

bool OnboardingView::lacksPrompt() const {
  return helperManager_.lacksPrompt &&
         (state() == State::notRegistered || state() == State::requiresApproval);
}

const OnboardingStateTexts& OnboardingView::texts() const {
  switch (state()) {
    case State::notInstalled:
      return allTexts_.notInstalled;
    case State::notRegistered:
      return allTexts_.notRegistered;
    case State::requiresApproval:
      return allTexts_.requiresApproval;
    case State::enabled:
      return allTexts_.enabled;
    case State::notFound:
      return allTexts_.notFound;
  }
  return allTexts_.notRegistered;
}

OnboardingView::Mood OnboardingView::mood() const {
  if (lacksPrompt() || state() == State::notInstalled || state() == State::notFound) return Mood::trouble;
  return state() == State::requiresApproval ? Mood::waiting : Mood::ready;
}

std::string_view OnboardingView::title() const {
  return lacksPrompt() ? allTexts_.noPromptTitle : texts().title;
}

std::string_view OnboardingView::sentence() const {
  return lacksPrompt() ? allTexts_.noPromptSentence : texts().sentence;
}

std::string_view OnboardingView::statusLine() const {
  const bool claimsToWait = lacksPrompt() && state() == State::requiresApproval;
  return claimsToWait ? std::string_view() : texts().statusLine;
}

OnboardingButton OnboardingView::primaryButton() const {
  switch (state()) {
    case State::notInstalled:
    case State::notFound:
      return {.title = allTexts_.showApplications, .accessibilityLabel = {}, .accessibilityHint = {}};
    case State::notRegistered:
      return {.title = OnboardingTexts::installHelper,
              .isActive = !isInstalling,
              .accessibilityLabel = {},
              .accessibilityHint = {}};
    case State::requiresApproval:
      return {
          .title = allTexts_.askAgain, .accessibilityLabel = {}, .accessibilityHint = allTexts_.askAgainHint};
    case State::enabled:
      return {.title = OnboardingTexts::continueTitle, .accessibilityLabel = {}, .accessibilityHint = {}};
  }
  return {};
}

std::optional<OnboardingButton> OnboardingView::secondaryButton() const {
  const OnboardingButton tryAgain{
      .title = OnboardingTexts::tryAgain, .accessibilityLabel = {}, .accessibilityHint = {}};
  switch (state()) {
    case State::notInstalled:
    case State::notFound:
      return tryAgain;
    case State::requiresApproval:
      if (lacksPrompt()) return tryAgain;
      return OnboardingButton{.title = OnboardingTexts::waiting,
                              .isActive = false,
                              .accessibilityLabel = OnboardingTexts::waitingLabel,
                              .accessibilityHint = allTexts_.waitingHint};
    case State::notRegistered:
    case State::enabled:
      return std::nullopt;
  }
  return std::nullopt;
}

void OnboardingView::primaryPressed() {
  switch (state()) {
    case State::notInstalled:
    case State::notFound:
      return showHowToInstall();
    case State::notRegistered:
      return install();
    case State::requiresApproval:
      return helperManager_.openLoginItems();
    case State::enabled:
      requestNotificationAuthorization_();
      return flowState_.completeHelperStep();
  }
}

void OnboardingView::secondaryPressed() {
  const auto button = secondaryButton();
  if (button && button->isActive) helperManager_.refreshStatus();
}

// Without a page, or a program to show it, the user gets the folder of the program's own files.
void OnboardingView::showHowToInstall() {
  const std::string& address = system_ == HostSystem::macOS ? applicationsFolderURL : installPage_;
  if (!ProductAddresses::isSet(address) || !links_.openURL(address)) fileViewer_.reveal(bundle_.bundlePath());
}

void OnboardingView::install() {
  if (isInstalling) return;
  isInstalling = true;
  helperManager_.registerDaemon();
  tasks_.spawn(finishInstalling());
}

Task<> OnboardingView::finishInstalling() {
  co_await sleepFor(scheduler_, registrationSeconds);
  co_await helperManager_.awaitFreshStatus(ports::AskedBy::user);
  helperManager_.refreshStatus();
  if (helperManager_.status.get() == InstallStatus::Case::requiresApproval) helperManager_.openLoginItems();
  isInstalling = false;
}

}  // namespace vorli
