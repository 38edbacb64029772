#pragma once

#include "ambient/Notifications.h"
#include "app/Services.h"
#include "base/TaskScope.h"
#include "popover/PopoverView.h"
#include "tests/fakes/CapturedLog.h"
#include "tests/fakes/FakeHost.h"
#include "tests/fakes/Publish.h"
#include "tests/helper/HelperFixture.h"

#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace vorli {

/// All services on a fake host, with a popover's view, on a machine that is hot enough for a ring of 1.0.
struct PolishFixture : testing::Test, fakes::FakeHost {
  using Conduct = fakes::HelperTransport::Conduct;

  PolishFixture() {
    settings.hapticFeedback.set(true);
    setUsedPages(1'000'000);
    setHeat(3);
    manager.refreshStatus();
    monitor.refresh();
    view.emplace(popoverServices());
    scheduler.runReady();
    fakes::publish(view->animatedProgress, 1.0);
    fakes::publish(view->animatedState, RingState::critical);
    log.clear();
  }

  PopoverServices popoverServices() { return popoverServices(scheduler); }
  PopoverServices popoverServices(Scheduler& ofTheFlow) {
    return {.polish = {.scheduler = ofTheFlow,
                       .notifications = notifications,
                       .systemMonitor = monitor,
                       .helperManager = manager,
                       .settings = settings,
                       .clearState = clearState,
                       .celebrationGlow = glow,
                       .audio = audio,
                       .haptics = haptics,
                       .workspace = workspace,
                       .bundle = bundle,
                       .memory = memory,
                       .calendar = calendar,
                       .texts = *polishTexts},
            .defaults = defaults,
            .culpritFormatter = services.culpritFormatter,
            .motion = motion,
            .texts = *popoverTexts};
  }

  /// Makes the heat alone give the ring's target, from 0 to 3: 0.05, 0.3, 0.7, 1.0.
  void setHeat(int state) { thermal.reading.systemState = state; }
  void setUsedPages(std::uint64_t pages) {
    memory.statistics->freeCount = memory.physicalMemory / memory.pageSize - pages;
  }
  void setHelperStatus(int raw) {
    helperService.rawStatus = raw;
    manager.refreshStatus();
  }
  /// Acts like a tick that ends with this value.
  void publishRing(double progress) {
    fakes::publish(monitor.ringProgress, progress);
    scheduler.runReady();
  }

  TaskHandle press() {
    startedAt = scheduler.now();
    auto flow = view->polishPressed();
    scheduler.runReady();
    return flow;
  }

  // Sums of the flow's delays may differ from literal times in the last bits.
  static constexpr double rounding = 1e-9;

  /// Advances to a time of the polish, counted from its start.
  void goTo(double seconds) { scheduler.advanceTo(startedAt + seconds); }
  /// Advances to the last frame before that time.
  void goBefore(double seconds) { goTo(seconds - frame); }

  std::vector<std::string> popoverLines() const {
    std::vector<std::string> lines;
    for (const auto& line : log.lines()) {
      if (line.category == "popover") lines.push_back(line.message);
    }
    return lines;
  }

  TaskHandle start(Task<> task) {
    auto handle = tasks.spawn(std::move(task));
    scheduler.runReady();
    return handle;
  }

  fakes::KeyValueStore& store = defaults;
  fakes::AudioOutputTap& tap = audioOutput;
  fakes::GlowOverlay& overlay = celebrationOverlay;
  fakes::HelperTransport& transport = helperTransport;
  fakes::CapturedLog log;
  Services services{ports()};
  NotificationCenter& notifications = services.notifications;
  HelperManager& manager = services.helperManager;
  AppSettings& settings = services.settings;
  SystemMonitor& monitor = services.systemMonitor;
  ClearState& clearState = services.clearState;
  CelebrationGlowController& glow = services.celebrationGlow;
  AudioActivityProbe& audio = services.audio;
  const PopoverTexts* popoverTexts = &PopoverTexts::macOS;
  const PolishTexts* polishTexts = &PolishTexts::macOS;
  std::optional<PopoverView> view;

  int closes = 0;
  Subscription closeSubscription =
      notifications.observe<VorliClosePopover>([this](const auto&) { ++closes; });
  double startedAt = 0.0;
  TaskScope tasks{scheduler};
};

}  // namespace vorli
