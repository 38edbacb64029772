#pragma once

#include "app/HostPorts.h"
#include "flows/OnboardingWindowController.h"
#include "tests/fakes/ApplicationBundle.h"
#include "tests/fakes/ApplicationHost.h"
#include "tests/fakes/AudioOutputTap.h"
#include "tests/fakes/BackgroundWork.h"
#include "tests/fakes/CPUCounters.h"
#include "tests/fakes/CalendarClock.h"
#include "tests/fakes/CrashCapture.h"
#include "tests/fakes/DesktopShell.h"
#include "tests/fakes/FileViewer.h"
#include "tests/fakes/Files.h"
#include "tests/fakes/GlobalHotkeys.h"
#include "tests/fakes/GlowOverlay.h"
#include "tests/fakes/Haptics.h"
#include "tests/fakes/HelperService.h"
#include "tests/fakes/HelperTransport.h"
#include "tests/fakes/KeyMonitor.h"
#include "tests/fakes/KeyValueStore.h"
#include "tests/fakes/LinkOpener.h"
#include "tests/fakes/LoginItem.h"
#include "tests/fakes/ManualScheduler.h"
#include "tests/fakes/MemoryCounters.h"
#include "tests/fakes/MotionPreference.h"
#include "tests/fakes/Pasteboard.h"
#include "tests/fakes/PopoverWindow.h"
#include "tests/fakes/PowerSources.h"
#include "tests/fakes/ProcessTable.h"
#include "tests/fakes/SerialQueue.h"
#include "tests/fakes/SheetWindow.h"
#include "tests/fakes/StartupHost.h"
#include "tests/fakes/StatusItem.h"
#include "tests/fakes/SystemDescription.h"
#include "tests/fakes/ThermalSensors.h"
#include "tests/fakes/UpdateFramework.h"
#include "tests/fakes/UserNotificationCenter.h"
#include "tests/fakes/Workspace.h"

#include <optional>
#include <vector>

namespace vorli::fakes {

/// A whole host made of fakes, in virtual time, whose user has finished the first steps: `FakeHost host;
/// Services services{host.ports()};`.
struct FakeHost : ViewHost, OnboardingContentHost {
  FakeHost() {
    updates.source = std::nullopt;  // not configured, as on most hosts
    addresses.support = "support@example.org";
    defaults.values["hasCompletedOnboarding"] = true;
    defaults.values["hasSeenDoneScreen"] = true;
  }

  /// Makes this the program's first start. Call it before the launch.
  void makeUserNew() { defaults.values.clear(); }

  HostPorts ports() { return portsOf(*this, *this); }

  void installPopoverContent(PopoverView& view) override { installedPopoverView = &view; }
  void installHelperStep(OnboardingView& view, PreviewPickerBar* bar) override {
    helperStep = &view;
    previewBar = bar;
  }
  void installDoneStep(OnboardingDoneView& view, PreviewPickerBar* bar) override {
    doneStep = &view;
    previewBar = bar;
  }
  void installCrashReport(CrashReportView& view) override { installedCrashReport = &view; }
  void showSettings(VorliSettingsView& view) override { shownSettings.push_back(&view); }

  ManualScheduler scheduler;
  CalendarClock calendar{scheduler};
  BackgroundWork background{scheduler};
  KeyValueStore defaults;
  ApplicationBundle bundle;
  Files files;
  SerialQueue logQueue;
  SystemDescription system;
  CrashCapture crashes;
  FileViewer fileViewer;
  DiagnosticsFolders diagnosticsFolders{"/home/test/logs", "/home/test/crashes"};
  MemoryCounters memory;
  CPUCounters cpu;
  ThermalSensors thermal;
  PowerSources power;
  ProcessTable processes;
  Workspace workspace;
  DesktopShell desktop;
  AudioOutputTap audioOutput;
  HelperService helperService{scheduler};
  HelperTransport helperTransport{scheduler};
  UserNotificationCenter notices{scheduler};
  GlobalHotkeys hotkeys;
  LoginItem loginItem;
  KeyMonitor keys;
  LinkOpener links;
  ProductAddresses addresses;
  UpdateFramework updates;
  ApplicationHost application;
  StatusItem statusItem;
  PopoverWindow popover;
  MotionPreference motion;
  Pasteboard pasteboard;
  SheetWindow onboardingWindow, crashReportWindow;
  OnboardingContentHost& onboardingContent = *this;
  GlowOverlay celebrationOverlay, edgeOverlay;
  Haptics haptics;
  StartupHost startup{scheduler};
  PopoverView* installedPopoverView = nullptr;
  CrashReportView* installedCrashReport = nullptr;
  OnboardingView* helperStep = nullptr;
  OnboardingDoneView* doneStep = nullptr;
  PreviewPickerBar* previewBar = nullptr;
  std::vector<VorliSettingsView*> shownSettings;
};

}  // namespace vorli::fakes
