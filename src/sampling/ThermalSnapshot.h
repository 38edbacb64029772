#pragma once

#include "base/Date.h"
#include "ports/PowerSources.h"
#include "ports/ThermalSensors.h"

#include <span>

namespace vorli {

enum class ThermalState : int { nominal = 0, fair = 1, serious = 2, critical = 3 };

enum class PowerSource { battery, ac, unknown };

/// Temperature and power state at one moment.
struct ThermalSnapshot {
  ThermalState thermalState = ThermalState::nominal;
  bool lowPowerMode = false;
  PowerSource powerSource = PowerSource::unknown;
  Date capturedAt = Date::distantPast();

  static const ThermalSnapshot empty;

  bool operator==(const ThermalSnapshot&) const = default;
};

/// The system's own verdict, otherwise the state of the worst zone: critical at its critical trip point,
/// serious at its hot one, fair at its passive one. Nominal without sensors.
ThermalState thermalState(const ports::ThermalReading& reading);

/// Returns the source that powers the machine: unknown if it is an uninterruptible supply, or if there is no
/// information.
PowerSource powerSource(std::span<const ports::PowerSupply> supplies);

}  // namespace vorli
