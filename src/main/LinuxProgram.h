#pragma once

#include "ports/CPUCounters.h"
#include "ports/CalendarClock.h"
#include "ports/MemoryCounters.h"
#include "ports/PowerSources.h"
#include "ports/ThermalSensors.h"

#include <functional>
#include <memory>

namespace vorli {

class AppDelegate;
struct Services;

/// The back ends that supply the readings for the ring.
struct SamplingBackEnds {
  std::unique_ptr<ports::CalendarClock> calendar;
  std::unique_ptr<ports::MemoryCounters> memory;
  std::unique_ptr<ports::CPUCounters> cpu;
  std::unique_ptr<ports::ThermalSensors> thermal;
  std::unique_ptr<ports::PowerSources> power;

  static SamplingBackEnds ofThisMachine();
};

/// Builds the Linux program on `backEnds`, runs it until it ends and returns its exit status. `watch` is
/// called when everything is built, before the first sample.
int runLinuxProgram(int argc, char** argv, SamplingBackEnds backEnds,
                    const std::function<void(Services&, AppDelegate&)>& watch = nullptr);

}  // namespace vorli
