#include "app/AppDelegate.h"

#include "ambient/MenuBarTickDial.h"
#include "app/StatusMenu.h"
#include "app/StatusSentence.h"
#include "base/OnceReply.h"
#include "insights/CulpritSentence.h"

namespace vorli {

namespace {

constexpr double statusIconSide = 18.0;
constexpr double statusIconPadding = 1.0;

}  // namespace

AppDelegate::AppDelegate(Services& services)
    : services_(services),
      host_(services.host),
      reactions_(services, {.updateStatusIcon = [this] { updateStatusIcon(); },
                            .applyEdgeGlow = [this] { applyEdgeGlow(); },
                            .registerHotkey = [this](const std::string& combo) { registerHotkey(combo); }}),
      tasks_(services.host.scheduler) {}

void AppDelegate::applicationDidFinishLaunching() {
  for (const auto& step : launchSequence()) step.take();
}

AppDelegate::TerminateReply AppDelegate::applicationShouldTerminate() {
  if (services_.suspendedAppsManager.suspendedPIDs->empty()) return TerminateReply::now;
  tasks_.spawn(resumeSuspendedAppsAndQuit());
  return TerminateReply::later;
}

Task<> AppDelegate::resumeSuspendedAppsAndQuit() {
  co_await services_.suspendedAppsManager.resumeAll();
  host_.application.replyToTermination();
}

void AppDelegate::applicationWillTerminate() {
  services_.systemMonitor.stopTimer();
  reactions_.drop();
}

void AppDelegate::createStatusItem() {
  if (!host_.statusItem.create()) return;
  host_.statusItem.setClickHandler([this](const ports::StatusClick& click) { handleStatusClick(click); });
  host_.statusItem.setMenuProvider([this] { return contextMenu(); });
  host_.statusItem.setToolTip("Vorli");
  host_.statusItem.setAccessibilityLabel("Vorli");
}

void AppDelegate::registerHotkey(const std::string& combo) {
  services_.hotkeys.registerCombo(combo, [this] { polishNow(); });
}

void AppDelegate::applyEdgeGlow() {
  if (services_.settings.edgeGlow())
    services_.edgeGlow.enable();
  else
    services_.edgeGlow.disable();
}

void AppDelegate::mountPopoverContent() {
  host_.popover.setContentSize(PopoverHost::mountedSize);
  popoverView_.emplace(services_.popover);
  popoverView_->setGearHandler([this] { showSettings(std::nullopt); });
  host_.views.installPopoverContent(*popoverView_);
}

void AppDelegate::showSettings(std::optional<VorliSettingsTab> tab) {
  if (tab) services_.settingsView.select(*tab);
  services_.notifications.post(VorliClosePopover{});
  host_.views.showSettings(services_.settingsView);
}

void AppDelegate::updateStatusIcon() {
  if (!host_.statusItem.hasButton()) return;
  const double ring = services_.systemMonitor.ringProgress;
  const double calm = services_.clearState.calmIntensity;
  const bool isSetUp = services_.onboardingFlowState.isSetupComplete();

  MenuBarTickDial dial;
  dial.progress = MenuBarTickDial::calmedProgress(ring, calm);
  dial.isDark = isOnDarkPanel();
  dial.calmOverlay = calm;
  dial.dimmed = !isSetUp;
  host_.statusItem.setPicture(dial.picture(statusIconSide, statusIconPadding));
  host_.statusItem.setAccessibilityValue(
      statusSentence(isSetUp ? SetupState::finished : SetupState::incomplete, ring));
}

// The user's choice comes first, because some panels do not publish their colour.
bool AppDelegate::isOnDarkPanel() const {
  const std::string& wish = services_.settings.dialPanel().get();
  if (wish == "light") return false;
  return wish == "dark" || host_.statusItem.hasDarkAppearance();
}

void AppDelegate::handleStatusClick(const ports::StatusClick& click) {
  if (click.button == ports::StatusClick::Button::right ||
      click.control == ports::StatusClick::Control::held) {
    host_.statusItem.showMenu(contextMenu());
    return;
  }
  if (showUnfinishedFirstSteps() == FirstSteps::finished) togglePopover();
}

// Brings an open window to the front as it is: in the preview, it shows whatever step was picked.
AppDelegate::FirstSteps AppDelegate::showUnfinishedFirstSteps() {
  auto& onboarding = services_.onboarding;
  if (onboarding.isOpen()) {
    onboarding.bringToFront();
  } else {
    onboarding.showIfNeeded();
  }
  return onboarding.isOpen() ? FirstSteps::shown : FirstSteps::finished;
}

void AppDelegate::togglePopover() {
  if (host_.statusItem.hasButton()) services_.popoverHost.togglePopover();
}

void AppDelegate::reopen() {
  if (showUnfinishedFirstSteps() == FirstSteps::shown) return;
  if (host_.statusItem.hasButton()) services_.popoverHost.showPopover();
}

std::vector<ports::MenuRow> AppDelegate::contextMenu() {
  return statusMenu(
      {
          .menuClearNow = [this] { polishNow(); },
          .menuRestartDock = [this] { host_.desktop.restartDock(); },
          .menuRestartFinder = [this] { menuRestartFinder(); },
          .menuCheckForUpdates = [this] { services_.updaterManager.checkForUpdates(); },
          .menuOpenLoginItems = [this] { services_.helperManager.openLoginItems(); },
          .menuAbout = [this] { menuAbout(); },
          .menuQuit = [this] { host_.application.terminate(); },
      },
      services_.updaterManager.isConfigured ? UpdatesState::configured : UpdatesState::unconfigured);
}

void AppDelegate::menuRestartFinder() {
  host_.desktop.restartFinder(OnceReply<std::string>([this, life = std::weak_ptr(life_)](const auto& name) {
    if (life.lock()) showInfoAlert(CulpritSentence::closedByHandText(name));
  }));
}

void AppDelegate::menuAbout() {
  host_.application.activateIgnoringOtherApps();
  host_.application.openAboutPanel();
}

void AppDelegate::polishNow() {
  if (services_.quietPolish.polishNow() == QuietPolish::Start::started) return;
  showInfoAlert("Helper not installed. Open Vorli to finish setup.");
}

// The settings show the helper's state but no error; the first steps show some of them.
void AppDelegate::showHelperPage() {
  const auto& helper = services_.helperManager;
  // Read before a window opens: opening it reads the status, which may take the error back.
  const bool hasError = helper.lastError.get().has_value();
  const std::string text = helper.stateText();
  if (showUnfinishedFirstSteps() == FirstSteps::finished) {
    showSettings(VorliSettingsTab::about);
  } else if (helper.lacksPrompt) {
    return;
  }
  if (hasError) showInfoAlert(text);
}

void AppDelegate::showInfoAlert(const std::string& text) {
  host_.application.showInfoAlert("Vorli", text);
}

}  // namespace vorli
