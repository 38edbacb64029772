#pragma once

#include "ambient/CelebrationGlowController.h"
#include "ambient/ClearState.h"
#include "ambient/EdgeGlowController.h"
#include "app/HostPorts.h"
#include "base/NotificationCenter.h"
#include "diagnostics/CrashReportWindowController.h"
#include "diagnostics/CrashReporter.h"
#include "diagnostics/Diagnostics.h"
#include "flows/OnboardingFlowState.h"
#include "flows/OnboardingWindowController.h"
#include "flows/UpdaterManager.h"
#include "flows/VorliSettingsView.h"
#include "helper/HelperManager.h"
#include "helper/LaunchAtLoginManager.h"
#include "insights/CulpritFormatter.h"
#include "insights/IdleAppTracker.h"
#include "insights/SuspendedAppsManager.h"
#include "nudges/GlobalHotkeyManager.h"
#include "nudges/NudgeNotifier.h"
#include "polish/AudioActivityProbe.h"
#include "polish/QuietPolish.h"
#include "popover/PopoverHost.h"
#include "popover/PopoverView.h"
#include "sampling/SystemMonitor.h"
#include "settings/AppSettings.h"
#include "startup/StartupItems.h"

namespace vorli {

/// All services of the process, in construction order: each is built from the host's ports and earlier
/// services. Only holds them. One instance per process. Main thread.
struct Services {
  explicit Services(const HostPorts& ports) : host(ports) {}
  Services(const Services&) = delete;
  Services& operator=(const Services&) = delete;

  const HostPorts host;
  NotificationCenter notifications;
  Diagnostics diagnostics{
      {host.files, host.logQueue, host.calendar, host.bundle, host.system, host.crashes, host.fileViewer},
      host.diagnosticsFolders};
  HelperManager helperManager{host.scheduler, host.helperService, host.helperTransport, host.bundle};
  AppSettings settings{host.defaults};
  OnboardingFlowState onboardingFlowState{host.defaults};
  IdleAppTracker idleTracker{host.scheduler, host.calendar, host.defaults, host.workspace};
  SystemMonitor systemMonitor{{host.scheduler, host.calendar, host.memory, host.cpu, host.thermal, host.power,
                               host.processes, host.workspace, host.bundle, host.background},
                              settings,
                              idleTracker};
  UpdaterManager updaterManager{{host.scheduler, host.calendar, host.defaults, host.updates,
                                 [this](const std::string& message) { diagnostics.log("WARN", message); }}};
  SuspendedAppsManager suspendedAppsManager{host.scheduler, helperManager, host.workspace};
  ClearState clearState{host.scheduler};
  AudioActivityProbe audio{host.audioOutput};
  QuietPolish quietPolish{host.scheduler, host.calendar, helperManager, systemMonitor, settings, audio};
  NudgeNotifier nudgeNotifier{
      {host.scheduler, host.calendar, host.defaults, host.notices, helperManager, settings, quietPolish}};
  GlobalHotkeyManager hotkeys{host.scheduler, host.hotkeys};
  CrashReporter crashReporter{
      {host.files, host.defaults, host.calendar, host.bundle, host.links, host.pasteboard},
      host.diagnosticsFolders.crashReports,
      host.addresses.support};
  CrashReportWindowController crashReports{
      {host.scheduler, host.calendar, crashReporter, host.crashReportWindow, host.application,
       [this](CrashReportView& view) { host.views.installCrashReport(view); }}};
  OnboardingWindowController onboarding{
      {.views = {.scheduler = host.scheduler,
                 .helperManager = helperManager,
                 .flowState = onboardingFlowState,
                 .bundle = host.bundle,
                 .announcements = host.startup.announcements,
                 .links = host.links,
                 .fileViewer = host.fileViewer,
                 .installPage = host.addresses.install,
                 .requestNotificationAuthorization = [this] { nudgeNotifier.requestAuthorization(); }},
       .window = host.onboardingWindow,
       .host = host.application,
       .content = host.onboardingContent}};
  LaunchAtLoginManager launchAtLogin{settings, host.loginItem};
  StartupItems startupItems{{host.scheduler, host.calendar, host.defaults, host.workspace, helperManager},
                            host.startup};
  CelebrationGlowController celebrationGlow{host.scheduler, host.celebrationOverlay};
  EdgeGlowController edgeGlow{
      {host.scheduler, host.edgeOverlay, host.workspace, host.motion, systemMonitor, clearState}};
  CulpritFormatter culpritFormatter{host.workspace, ApplicationPaths(host.bundle.homeDirectory())};
  PopoverHost popoverHost{
      {host.scheduler, notifications, host.popover, host.application, helperManager, systemMonitor}};
  PopoverServices popover{.polish = {.scheduler = host.scheduler,
                                     .notifications = notifications,
                                     .systemMonitor = systemMonitor,
                                     .helperManager = helperManager,
                                     .settings = settings,
                                     .clearState = clearState,
                                     .celebrationGlow = celebrationGlow,
                                     .audio = audio,
                                     .haptics = host.haptics,
                                     .workspace = host.workspace,
                                     .bundle = host.bundle,
                                     .memory = host.memory,
                                     .calendar = host.calendar},
                          .defaults = host.defaults,
                          .culpritFormatter = culpritFormatter,
                          .motion = host.motion};
  VorliSettingsView settingsView{{.scheduler = host.scheduler,
                                  .notifications = notifications,
                                  .settings = settings,
                                  .helperManager = helperManager,
                                  .updaterManager = updaterManager,
                                  .hotkeys = hotkeys,
                                  .diagnostics = diagnostics,
                                  .keys = host.keys,
                                  .links = host.links,
                                  .application = host.application,
                                  .bundle = host.bundle,
                                  .motion = host.motion,
                                  .workspace = host.workspace,
                                  .addresses = host.addresses}};
};

}  // namespace vorli
