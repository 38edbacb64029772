#pragma once

#include "ports/CPUCounters.h"
#include "ports/CalendarClock.h"
#include "ports/MemoryCounters.h"
#include "ports/PowerSources.h"
#include "ports/ThermalSensors.h"

#include <functional>
#include <memory>

namespace vorli {

class SystemMonitor;

/// The back ends that the ring is computed from.
struct SamplingBackEnds {
  std::unique_ptr<ports::CalendarClock> calendar;
  std::unique_ptr<ports::MemoryCounters> memory;
  std::unique_ptr<ports::CPUCounters> cpu;
  std::unique_ptr<ports::ThermalSensors> thermal;
  std::unique_ptr<ports::PowerSources> power;

  static SamplingBackEnds ofThisMachine();
};

/// Builds the Linux program on `backEnds` and runs it to its end. Returns the exit status. `watch` gets the
/// monitor once everything is built and before the first sample.
int runLinuxProgram(int argc, char** argv, SamplingBackEnds backEnds,
                    std::function<void(SystemMonitor&)> watch = nullptr);

}  // namespace vorli
