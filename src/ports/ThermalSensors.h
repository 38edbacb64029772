#pragma once

#include <cstdint>
#include <optional>
#include <vector>

namespace vorli::ports {

/// One temperature zone of the machine, in thousandths of a degree Celsius. A missing trip point is empty.
struct ThermalZone {
  std::int64_t temperature = 0;
  std::optional<std::int64_t> passiveTrip;
  std::optional<std::int64_t> hotTrip;
  std::optional<std::int64_t> criticalTrip;

  bool operator==(const ThermalZone&) const = default;
};

/// Either the system's own verdict, 0 (nominal) to 3 (critical), or its zones. Both are empty on a machine
/// without sensors.
struct ThermalReading {
  std::optional<int> systemState;
  std::vector<ThermalZone> zones;

  bool operator==(const ThermalReading&) const = default;
};

/// Temperature and power mode. Main thread; a call blocks for some tens of microseconds per zone.
class ThermalSensors {
 public:
  virtual ~ThermalSensors() = default;

  virtual ThermalReading readThermal() = 0;

  /// False where the system has no such mode.
  virtual bool isLowPowerModeEnabled() = 0;
};

}  // namespace vorli::ports
