#pragma once

#include "base/Scheduler.h"
#include "diagnostics/Diagnostics.h"
#include "flows/ProductAddresses.h"
#include "ports/ApplicationBundle.h"
#include "ports/ApplicationHost.h"
#include "ports/AudioOutputTap.h"
#include "ports/BackgroundWork.h"
#include "ports/CPUCounters.h"
#include "ports/CalendarClock.h"
#include "ports/CrashCapture.h"
#include "ports/DesktopShell.h"
#include "ports/FileViewer.h"
#include "ports/Files.h"
#include "ports/GlobalHotkeys.h"
#include "ports/GlowOverlay.h"
#include "ports/Haptics.h"
#include "ports/HelperService.h"
#include "ports/HelperTransport.h"
#include "ports/KeyMonitor.h"
#include "ports/KeyValueStore.h"
#include "ports/LinkOpener.h"
#include "ports/LoginItem.h"
#include "ports/MemoryCounters.h"
#include "ports/MotionPreference.h"
#include "ports/Pasteboard.h"
#include "ports/PopoverWindow.h"
#include "ports/PowerSources.h"
#include "ports/ProcessTable.h"
#include "ports/SerialQueue.h"
#include "ports/SheetWindow.h"
#include "ports/StartupPorts.h"
#include "ports/StatusItem.h"
#include "ports/SystemDescription.h"
#include "ports/ThermalSensors.h"
#include "ports/UpdateFramework.h"
#include "ports/UserNotificationCenter.h"
#include "ports/Workspace.h"

namespace vorli {

class CrashReportView;
class OnboardingContentHost;
class PopoverView;
class VorliSettingsView;

/// Installs the core's views in windows of the host's toolkit. Main thread.
class ViewHost {
 public:
  virtual ~ViewHost() = default;

  /// Makes `view` the content of the popover's panel. Called once; the view lives until the program ends.
  virtual void installPopoverContent(PopoverView& view) = 0;

  /// Makes `view` the content of the crash report window that opens next. The view lives until one turn of
  /// the main loop after the window has closed.
  virtual void installCrashReport(CrashReportView& view) = 0;

  /// Opens the settings window with `view` in it, or brings it to the front. The view lives until the program
  /// ends.
  virtual void showSettings(VorliSettingsView& view) = 0;
};

/// Everything that the core needs from a host; a composition root fills in this list. Every object in it must
/// outlive the core.
struct HostPorts {
  Scheduler& scheduler;
  const ports::CalendarClock& calendar;
  ports::BackgroundWork& background;
  ports::KeyValueStore& defaults;
  const ports::ApplicationBundle& bundle;

  ports::Files& files;
  ports::SerialQueue& logQueue;
  ports::SystemDescription& system;
  ports::CrashCapture& crashes;
  ports::FileViewer& fileViewer;
  DiagnosticsFolders diagnosticsFolders;

  ports::MemoryCounters& memory;
  ports::CPUCounters& cpu;
  ports::ThermalSensors& thermal;
  ports::PowerSources& power;
  ports::ProcessTable& processes;

  ports::Workspace& workspace;
  ports::DesktopShell& desktop;
  ports::AudioOutputTap& audioOutput;
  ports::HelperService& helperService;
  ports::HelperTransport& helperTransport;
  ports::UserNotificationCenter& notices;
  ports::GlobalHotkeys& hotkeys;
  ports::LoginItem& loginItem;
  ports::UpdateFramework& updates;
  ports::StartupPorts startup;
  ports::KeyMonitor& keys;
  ports::LinkOpener& links;
  ports::Pasteboard& pasteboard;
  ProductAddresses addresses;

  ports::ApplicationHost& application;
  ports::StatusItem& statusItem;
  ports::PopoverWindow& popover;
  ports::MotionPreference& motion;
  ports::SheetWindow& onboardingWindow;
  OnboardingContentHost& onboardingContent;
  ports::SheetWindow& crashReportWindow;
  ports::GlowOverlay& celebrationOverlay;
  ports::GlowOverlay& edgeOverlay;
  ports::Haptics& haptics;
  ViewHost& views;
};

/// Returns the list of a host whose members have the names of the fields.
template <typename Host>
HostPorts portsOf(Host& host, ViewHost& views) {
  return {.scheduler = host.scheduler,
          .calendar = host.calendar,
          .background = host.background,
          .defaults = host.defaults,
          .bundle = host.bundle,
          .files = host.files,
          .logQueue = host.logQueue,
          .system = host.system,
          .crashes = host.crashes,
          .fileViewer = host.fileViewer,
          .diagnosticsFolders = host.diagnosticsFolders,
          .memory = host.memory,
          .cpu = host.cpu,
          .thermal = host.thermal,
          .power = host.power,
          .processes = host.processes,
          .workspace = host.workspace,
          .desktop = host.desktop,
          .audioOutput = host.audioOutput,
          .helperService = host.helperService,
          .helperTransport = host.helperTransport,
          .notices = host.notices,
          .hotkeys = host.hotkeys,
          .loginItem = host.loginItem,
          .updates = host.updates,
          .startup = host.startup.ports(),
          .keys = host.keys,
          .links = host.links,
          .pasteboard = host.pasteboard,
          .addresses = host.addresses,
          .application = host.application,
          .statusItem = host.statusItem,
          .popover = host.popover,
          .motion = host.motion,
          .onboardingWindow = host.onboardingWindow,
          .onboardingContent = host.onboardingContent,
          .crashReportWindow = host.crashReportWindow,
          .celebrationOverlay = host.celebrationOverlay,
          .edgeOverlay = host.edgeOverlay,
          .haptics = host.haptics,
          .views = views};
}

}  // namespace vorli
