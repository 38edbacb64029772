#pragma once

#include "linux/kernel/KeptFile.h"
#include "ports/ThermalSensors.h"

#include <string>
#include <vector>

namespace vorli::linuxhost {

/// The zones of /sys/class/thermal, and the power mode of the firmware or of the power profiles service.
class ThermalSensors final : public ports::ThermalSensors {
 public:
  /// `root` is the prefix of every path that is read; tests pass a recorded tree.
  explicit ThermalSensors(const std::string& root = "");

  ports::ThermalReading readThermal() override;
  bool isLowPowerModeEnabled() override;

  /// Number of readings between two searches for zones. Zones appear with kernel modules, and a service may
  /// change their trip points, but a zone has up to a dozen files for these, too many to read each time.
  static constexpr int readingsBetweenLooks = 64;

 private:
  struct Zone {
    KeptFile temperature;
    ports::ThermalZone reading;  // its trip points are read at each search
  };

  void lookForZones();

  const std::string folder_;
  const std::string profileStatePath_;
  KeptFile platformProfile_;
  std::vector<Zone> zones_;
  int readingsUntilLook_ = 0;
};

}  // namespace vorli::linuxhost
