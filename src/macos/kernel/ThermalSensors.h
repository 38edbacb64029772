#pragma once

#include "ports/ThermalSensors.h"

namespace vorli::machost {

/// The system's own verdict on its temperature.
class ThermalSensors final : public ports::ThermalSensors {
 public:
  ports::ThermalReading readThermal() override;
  bool isLowPowerModeEnabled() override;
};

}  // namespace vorli::machost
