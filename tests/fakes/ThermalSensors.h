#pragma once

#include "ports/ThermalSensors.h"

namespace vorli::fakes {

/// A machine without sensors, unless a test adds some.
class ThermalSensors final : public ports::ThermalSensors {
 public:
  ports::ThermalReading readThermal() override { return reading; }
  bool isLowPowerModeEnabled() override { return lowPowerMode; }

  ports::ThermalReading reading;
  bool lowPowerMode = false;
};

}  // namespace vorli::fakes
