#include "app/LaunchSequence.h"

#include "app/AppDelegate.h"
#include "base/Sleep.h"
#include "helper/HelperLaunchTask.h"
#include "settings/SetupRecord.h"

#include <cstdlib>
#include <string_view>

namespace vorli {

namespace {

constexpr double crashReportCheckDelay = 0.5;  // seconds

}  // namespace

// A service that takes part in the launch is one line here. Later steps rely on earlier ones: diagnostics
// come before anything that can fail, the user's place in the first steps before the dial that is dimmed by
// it and before any preference is stored, the icon before the first sample, and the first sample before
// whatever reacts to samples.
LaunchSequence AppDelegate::launchSequence() {
  return {
      {"diagnostics", [this] { services_.diagnostics.install(); }},
      {"first steps or their preview", [this] { beginFirstSteps(); }},
      {"status item", [this] { createStatusItem(); }},
      {"first icon", [this] { updateStatusIcon(); }},
      {"popover", [this] { services_.popoverHost.createPopover(); }},
      {"first sample", [this] { services_.systemMonitor.refresh(); }},
      {"sampling timer", [this] { services_.systemMonitor.restartTimer(); }},
      {"helper status", [this] { readHelperStatus(); }},
      {"helper launch task", [this] { startHelperLaunchTask(); }},
      {"activation observer", [this] { observeActivation(); }},
      {"permission for notices", [this] { askForNotices(); }},
      {"reactions to samples and appearance", [this] { reactions_.followSamplesAndAppearance(); }},
      {"reactions to memory", [this] { reactions_.followMemory(); }},
      {"reactions to settings", [this] { reactions_.followSettings(); }},
      {"global hot key", [this] { registerHotkey(services_.settings.globalHotkeyCombo()); }},
      {"edge glow", [this] { applyEdgeGlow(); }},
      {"login item", [this] { services_.launchAtLogin.syncFromSettings(); }},
      {"step of the user", [this] { services_.onboardingFlowState.updateStep(); }},
      {"popover content", [this] { mountPopoverContent(); }},
      {"window of the first steps", [this] { services_.onboarding.showIfNeeded(); }},
      {"crash report check", [this] { scheduleCrashReportCheck(); }},
  };
}

// Asks for the preview by an environment variable, which only developers set.
void AppDelegate::beginFirstSteps() {
  using Preview = OnboardingFlowState::Preview;
  const char* const wish = std::getenv("VORLI_PREVIEW_ONBOARDING");
  const bool isPreview = wish && std::string_view(wish) == "1";
  services_.onboardingFlowState.begin(isPreview ? Preview::on : Preview::off);
}

void AppDelegate::readHelperStatus() {
  services_.helperManager.forgetLastError();
  services_.helperManager.refreshStatus();
}

void AppDelegate::startHelperLaunchTask() {
  const Reinstall force = buildChanged(host_.bundle, host_.defaults) ? Reinstall::forced : Reinstall::ifStale;
  tasks_.spawn(helperLaunchTask(host_.scheduler, services_.helperManager, force,
                                [this] { services_.nudgeNotifier.notifyHelperBroken(); }));
}

void AppDelegate::observeActivation() {
  activation_ = services_.notifications.observe<ApplicationDidBecomeActive>(
      [this](const auto&) { services_.helperManager.refreshStatus(); });
}

// New users are asked during their first steps.
void AppDelegate::askForNotices() {
  if (hasCompletedOnboarding(host_.defaults)) services_.nudgeNotifier.requestAuthorization();
}

Task<> AppDelegate::offerCrashReports() {
  co_await sleepFor(host_.scheduler, crashReportCheckDelay);
  services_.crashReports.showIfNeeded();
}

// Reports are kept for a later launch while the first steps are unfinished, and in a build without a mailbox
// to send them to.
void AppDelegate::scheduleCrashReportCheck() {
  if (!services_.onboardingFlowState.isSetupComplete()) return;
  if (ProductAddresses::isSet(host_.addresses.support)) tasks_.spawn(offerCrashReports());
}

}  // namespace vorli
