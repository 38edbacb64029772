#pragma once

#include "ambient/CelebrationGlowController.h"
#include "ambient/ClearState.h"
#include "ambient/PopoverView.h"
#include "app/AppSettings.h"
#include "app/Notifications.h"
#include "base/NotificationCenter.h"
#include "insights/CulpritFormatter.h"
#include "polish/AudioActivityProbe.h"
#include "polish/PolishTimings.h"
#include "sampling/SystemMonitor.h"
#include "tests/fakes/AudioOutputTap.h"
#include "tests/fakes/BackgroundWork.h"
#include "tests/fakes/CPUCounters.h"
#include "tests/fakes/CalendarClock.h"
#include "tests/fakes/GlowOverlay.h"
#include "tests/fakes/Haptics.h"
#include "tests/fakes/KeyValueStore.h"
#include "tests/fakes/MemoryCounters.h"
#include "tests/fakes/MotionPreference.h"
#include "tests/fakes/PowerSources.h"
#include "tests/fakes/ProcessTable.h"
#include "tests/fakes/ThermalSensors.h"
#include "tests/fakes/Workspace.h"
#include "tests/helper/HelperFixture.h"

#include <optional>
#include <string>
#include <vector>

namespace vorli {

/// Everything that a polish works with, over fakes, on a machine that is hot enough for a ring of 1.0.
struct PolishFixture : HelperFixture {
  PolishFixture() {
    settings.setHapticFeedback(true);
    setUsedPages(1'000'000);
    setHeat(3);
    manager->refreshStatus();
    monitor.refresh();
    view.emplace(popoverServices());
    scheduler.runReady();
    view->animatedProgress = 1.0;
    view->animatedState = RingState::critical;
    log.clear();
  }

  PopoverServices popoverServices() { return popoverServices(scheduler); }
  PopoverServices popoverServices(Scheduler& ofTheFlow) {
    return {.polish = services(ofTheFlow),
            .defaults = store,
            .culpritFormatter = culpritFormatter,
            .motion = motion};
  }
  PolishServices services(Scheduler& ofTheFlow) {
    return {.scheduler = ofTheFlow,
            .notifications = notifications,
            .systemMonitor = monitor,
            .helperManager = *manager,
            .settings = settings,
            .clearState = clearState,
            .celebrationGlow = glow,
            .audio = audio,
            .haptics = haptics,
            .workspace = workspace,
            .bundle = bundle,
            .memory = memory,
            .calendar = calendar};
  }

  /// The heat alone gives the ring's target, 0 to 3: 0.05, 0.3, 0.7, 1.0.
  void setHeat(int state) { thermal.reading.systemState = state; }
  void setUsedPages(std::uint64_t pages) {
    memory.statistics->freeCount = memory.physicalMemory / memory.pageSize - pages;
  }
  void setHelperStatus(int raw) {
    service.rawStatus = raw;
    manager->refreshStatus();
  }
  /// As a tick that ends with this value.
  void publishRing(double progress) {
    monitor.ringProgress = progress;
    scheduler.runReady();
  }

  TaskHandle press() {
    startedAt = scheduler.now();
    auto flow = view->polishPressed();
    scheduler.runReady();
    return flow;
  }
  /// To a time of the polish, as told from its start.
  void goTo(double seconds) { scheduler.advanceTo(startedAt + seconds); }
  /// To the last moment before it.
  void goBefore(double seconds) { goTo(seconds - frame); }

  std::vector<std::string> popoverLines() const {
    std::vector<std::string> lines;
    for (const auto& line : log.lines()) {
      if (line.category == "popover") lines.push_back(line.message);
    }
    return lines;
  }

  fakes::CalendarClock calendar{scheduler};
  fakes::MemoryCounters memory;
  fakes::CPUCounters cpu;
  fakes::ThermalSensors thermal;
  fakes::PowerSources power;
  fakes::ProcessTable processes;
  fakes::BackgroundWork background{scheduler};
  fakes::Workspace workspace;
  fakes::KeyValueStore store;
  fakes::AudioOutputTap tap;
  fakes::GlowOverlay overlay;
  fakes::Haptics haptics;
  NotificationCenter notifications;
  AppSettings settings{store};
  IdleAppTracker idleTracker{scheduler, calendar, store, workspace};
  SystemMonitor monitor{
      {scheduler, calendar, memory, cpu, thermal, power, processes, workspace, bundle, background},
      settings,
      idleTracker};
  ClearState clearState{scheduler};
  CelebrationGlowController glow{scheduler, overlay};
  AudioActivityProbe audio{tap};
  CulpritFormatter culpritFormatter{workspace, ApplicationPaths("/home/anna")};
  fakes::MotionPreference motion;
  std::optional<PopoverView> view;

  int closes = 0;
  Subscription closeSubscription =
      notifications.observe<VorliClosePopover>([this](const auto&) { ++closes; });
  double startedAt = 0.0;
};

}  // namespace vorli
