#pragma once

#include "base/Date.h"
#include "ports/PowerSources.h"
#include "ports/ThermalSensors.h"

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

/// Recognises "Battery Power" and "AC Power"; anything else is unknown.
PowerSource readPowerSource(ports::PowerSources& sources);

}  // namespace vorli
