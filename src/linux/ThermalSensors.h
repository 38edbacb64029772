#pragma once

#include "linux/KeptFile.h"
#include "ports/ThermalSensors.h"

#include <string>
#include <vector>

namespace vorli::linuxhost {

/// The zones of /sys/class/thermal, and the power mode that the firmware or the power profiles service keeps.
class ThermalSensors final : public ports::ThermalSensors {
 public:
  /// `root` stands before every path that is read; tests give a recorded tree.
  explicit ThermalSensors(const std::string& root = "");

  ports::ThermalReading readThermal() override;
  bool isLowPowerModeEnabled() override;

  /// Zones come with modules, and a service may move their trip points, but a zone has up to a dozen files
  /// for them: they are looked for at the first reading and then at each one after so many.
  static constexpr int readingsBetweenLooks = 64;

 private:
  struct Zone {
    KeptFile temperature;
    ports::ThermalZone reading;  // its trip points stand from look to look
  };

  void lookForZones();

  const std::string folder_;
  const std::string profileStatePath_;
  KeptFile platformProfile_;
  std::vector<Zone> zones_;
  int readingsUntilLook_ = 0;
};

}  // namespace vorli::linuxhost
