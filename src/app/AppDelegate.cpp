#include "app/AppDelegate.h"

#include "ambient/MenuBarTickDial.h"
#include "app/StatusMenu.h"
#include "app/StatusSentence.h"
#include "app/UserDefaults.h"
#include "base/AnyChange.h"
#include "helper/HelperLaunchTask.h"

namespace vorli {

namespace {

constexpr double statusIconSide = 18.0;
constexpr double statusIconPadding = 1.0;

}  // namespace

AppDelegate::AppDelegate(const AppDelegateNeeds& needs)
    : scheduler_(needs.scheduler),
      notifications_(needs.notifications),
      defaults_(needs.defaults),
      bundle_(needs.bundle),
      statusItem_(needs.statusItem),
      host_(needs.host),
      desktop_(needs.desktop),
      helperManager_(needs.helperManager),
      systemMonitor_(needs.systemMonitor),
      settings_(needs.settings),
      suspendedAppsManager_(needs.suspendedAppsManager),
      clearState_(needs.clearState),
      quietPolish_(needs.quietPolish),
      edgeGlow_(needs.edgeGlow),
      popoverServices_(needs.popoverServices),
      popover_(needs.popover),
      installContent_(needs.installContent),
      popoverHost_({scheduler_, notifications_, popover_, host_, helperManager_, systemMonitor_}),
      tasks_(needs.scheduler) {}

void AppDelegate::applicationDidFinishLaunching() {
  createStatusItem();
  updateStatusIcon();
  popoverHost_.createPopover();

  systemMonitor_.refresh();
  systemMonitor_.restartTimer();

  helperManager_.lastError = std::nullopt;
  helperManager_.refreshStatus();
  const Reinstall force = buildChanged(bundle_, defaults_) ? Reinstall::forced : Reinstall::ifStale;
  tasks_.spawn(helperLaunchTask(scheduler_, helperManager_, force, [] {}));

  activation_ = notifications_.observe<ApplicationDidBecomeActive>(
      [this](const auto&) { helperManager_.refreshStatus(); });

  subscribeToMonitorAndTheme();
  subscribeToMemory();
  subscribeToSettings();
  applyEdgeGlow();
  mountPopoverContent();
}

AppDelegate::TerminateReply AppDelegate::applicationShouldTerminate() {
  if (suspendedAppsManager_.suspendedPIDs->empty()) return TerminateReply::now;
  tasks_.spawn(resumeSuspendedAppsAndQuit());
  return TerminateReply::later;
}

Task<> AppDelegate::resumeSuspendedAppsAndQuit() {
  co_await suspendedAppsManager_.resumeAll();
  host_.replyToTermination();
}

void AppDelegate::applicationWillTerminate() {
  systemMonitor_.stopTimer();
  cancellables_.clear();
}

void AppDelegate::createStatusItem() {
  if (!statusItem_.create()) return;
  statusItem_.setClickHandler([this](const ports::StatusClick& click) { handleStatusClick(click); });
  statusItem_.setMenuProvider([this] { return contextMenu(); });
  statusItem_.setToolTip("Vorli");
  statusItem_.setAccessibilityLabel("Vorli");
}

void AppDelegate::subscribeToMonitorAndTheme() {
  cancellables_.push_back(onAnyChange(
      scheduler_, [this] { updateStatusIcon(); }, systemMonitor_.memory, systemMonitor_.thermal,
      systemMonitor_.cpu));
  cancellables_.push_back(
      clearState_.calmIntensity.subscribeOnMainLoop(scheduler_, [this](double) { updateStatusIcon(); }));
  statusItem_.setAppearanceHandler([this] { updateStatusIcon(); });
  popoverHost_.observeContent();
}

void AppDelegate::subscribeToMemory() {
  cancellables_.push_back(systemMonitor_.memory.subscribeOnMainLoop(
      scheduler_, [this](const MemorySnapshot& memory) { quietPolish_.checkPressure(memory); }));
}

void AppDelegate::subscribeToSettings() {
  cancellables_.push_back(
      settings_.edgeGlow().subscribeOnMainLoop(scheduler_, [this](bool) { applyEdgeGlow(); }));
}

void AppDelegate::applyEdgeGlow() {
  if (settings_.edgeGlow())
    edgeGlow_.enable();
  else
    edgeGlow_.disable();
}

void AppDelegate::mountPopoverContent() {
  popover_.setContentSize(PopoverHost::mountedSize);
  popoverView_.emplace(popoverServices_);
  installContent_(*popoverView_);
}

void AppDelegate::updateStatusIcon() {
  if (!statusItem_.hasButton()) return;
  const double ring = systemMonitor_.ringProgress;
  const double calm = clearState_.calmIntensity;

  MenuBarTickDial dial;
  dial.progress = MenuBarTickDial::calmedProgress(ring, calm);
  dial.isDark = statusItem_.hasDarkAppearance();
  dial.calmOverlay = calm;
  statusItem_.setPicture(dial.picture(statusIconSide, statusIconPadding));
  statusItem_.setAccessibilityValue(statusSentence(SetupState::finished, ring));
}

void AppDelegate::handleStatusClick(const ports::StatusClick& click) {
  if (click.button == ports::StatusClick::Button::right ||
      click.control == ports::StatusClick::Control::held) {
    statusItem_.showMenu(contextMenu());
    return;
  }
  togglePopover();
}

void AppDelegate::togglePopover() {
  if (statusItem_.hasButton()) popoverHost_.togglePopover();
}

std::vector<ports::MenuRow> AppDelegate::contextMenu() {
  return statusMenu({
                        .menuClearNow = [this] { polishNow(); },
                        .menuRestartDock = [this] { desktop_.restartDock(); },
                        .menuRestartFinder = [this] { desktop_.restartFinder(); },
                        .menuCheckForUpdates = nullptr,
                        .menuOpenLoginItems = [this] { helperManager_.openLoginItems(); },
                        .menuAbout = [this] { menuAbout(); },
                        .menuQuit = [this] { host_.terminate(); },
                    },
                    UpdatesState::unconfigured);
}

void AppDelegate::menuAbout() {
  host_.activateIgnoringOtherApps();
  host_.openAboutPanel();
}

void AppDelegate::polishNow() {
  if (quietPolish_.polishNow() == QuietPolish::Start::started) return;
  showInfoAlert("Helper not installed. Open Vorli to finish setup.");
}

void AppDelegate::showInfoAlert(const std::string& text) {
  host_.showInfoAlert("Vorli", text);
}

}  // namespace vorli
