#include "linux/kernel/ThermalSensors.h"

#include "base/Blanks.h"
#include "formats/KernelText.h"
#include "formats/PowerProfile.h"
#include "linux/kernel/DeviceFolder.h"
#include "linux/kernel/SmallFile.h"

#include <array>
#include <optional>

namespace vorli::linuxhost {

namespace {

constexpr int mostTripPoints = 32;

// Keeps the lowest of several points of one kind. A point that is not set reads as 0 or far below freezing.
void setTrip(std::optional<std::int64_t>& trip, std::int64_t temperature) {
  if (temperature > 0 && (!trip || temperature < *trip)) trip = temperature;
}

ports::ThermalZone readTripPoints(const std::string& zone) {
  ports::ThermalZone points;
  for (int i = 0; i < mostTripPoints; ++i) {
    const auto point = zone + "/trip_point_" + std::to_string(i);
    const auto type = readAttribute(point + "_type");
    if (!type) break;
    const auto temperature = formats::parseSigned(readAttribute(point + "_temp").value_or(""));
    if (!temperature) continue;
    if (*type == "passive") setTrip(points.passiveTrip, *temperature);
    if (*type == "hot") setTrip(points.hotTrip, *temperature);
    if (*type == "critical") setTrip(points.criticalTrip, *temperature);
  }
  return points;
}

}  // namespace

ThermalSensors::ThermalSensors(const std::string& root)
    : folder_(root + "/sys/class/thermal"),
      profileStatePath_(root + "/var/lib/power-profiles-daemon/state.ini"),
      platformProfile_(root + "/sys/firmware/acpi/platform_profile") {}

ports::ThermalReading ThermalSensors::readThermal() {
  if (readingsUntilLook_ == 0) {
    lookForZones();
    readingsUntilLook_ = readingsBetweenLooks;
  }
  --readingsUntilLook_;

  ports::ThermalReading reading;
  std::array<char, longestAttribute> buffer;
  for (auto& zone : zones_) {
    // A sleeping sensor, such as that of a radio that is switched off, has no temperature and is left out.
    const auto temperature = formats::parseSigned(withoutBlanks(zone.temperature.read(buffer).value_or("")));
    if (!temperature) continue;
    zone.reading.temperature = *temperature;
    reading.zones.push_back(zone.reading);
  }
  return reading;
}

// Reads files instead of asking the bus: the mode of the firmware, and the user's choice in the service that
// works where the firmware has no such mode. The service replaces its file, so that file is opened each time.
bool ThermalSensors::isLowPowerModeEnabled() {
  std::array<char, longestAttribute> buffer;
  if (withoutBlanks(platformProfile_.read(buffer).value_or("")) == "low-power") return true;
  const auto state = readSmallFile(profileStatePath_, 4096);
  return state && formats::parsePowerProfile(*state) == "power-saver";
}

void ThermalSensors::lookForZones() {
  zones_.clear();
  for (const auto& name : deviceNames(folder_, "thermal_zone")) {
    const auto zone = folder_ + "/" + name;
    zones_.push_back({KeptFile(zone + "/temp"), readTripPoints(zone)});
  }
}

}  // namespace vorli::linuxhost
