#pragma once

#include "sampling/SystemMonitor.h"
#include "tests/fakes/FakeHost.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <memory>
#include <vector>

namespace vorli {

/// A monitor on a host made of fakes.
struct SystemMonitorFixture : testing::Test, fakes::FakeHost {
  SystemMonitorFixture() { makeMonitor(background); }

  void makeMonitor(ports::BackgroundWork& worker) {
    monitor.reset();  // destroyed before the next one reads the same fakes
    monitor = std::make_unique<SystemMonitor>(SystemMonitorPorts{scheduler, calendar, memory, cpu, thermal,
                                                                 power, processes, workspace, bundle, worker},
                                              settings, idleTracker);
  }

  static std::vector<std::int32_t> pids(const std::vector<ProcessSnapshot>& rows) {
    std::vector<std::int32_t> result;
    for (const auto& row : rows) result.push_back(row.id);
    return result;
  }

  AppSettings settings{defaults};
  IdleAppTracker idleTracker{scheduler, calendar, defaults, workspace};
  std::unique_ptr<SystemMonitor> monitor;
};

}  // namespace vorli
