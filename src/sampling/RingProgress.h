#pragma once

#include "sampling/MemorySnapshot.h"
#include "sampling/ThermalSnapshot.h"

#include <optional>

namespace vorli {

/// Inputs of the ring: the last two memory snapshots and the state of the processors.
struct RingSignals {
  const MemorySnapshot& memory;
  const std::optional<MemorySnapshot>& previous;  // base of the rates; if empty, all rates are 0
  double load = 0.0;                              // average of the last minute
  int activeProcessorCount = 0;                   // below 1 counts as 1
  double cpuUsage = 0.0;
  ThermalState thermalState = ThermalState::nominal;
};

/// The maximum of all distress signals, each scaled to 0..1. 0 for an empty memory snapshot.
double ringProgressTarget(const RingSignals& signals);

/// The ring one tick later: it rises quickly to a higher target and falls slowly to a lower one.
double smoothedRingProgress(double current, double target);

}  // namespace vorli
