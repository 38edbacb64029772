#include "sampling/ThermalSnapshot.h"

#include <algorithm>

namespace vorli {

namespace {

// A zone without a usable trip point often reports 0 or absolute zero instead of omitting it.
bool hasReached(std::int64_t temperature, std::optional<std::int64_t> trip) {
  return trip && *trip > 0 && temperature >= *trip;
}

ThermalState zoneState(const ports::ThermalZone& zone) {
  if (hasReached(zone.temperature, zone.criticalTrip)) return ThermalState::critical;
  if (hasReached(zone.temperature, zone.hotTrip)) return ThermalState::serious;
  if (hasReached(zone.temperature, zone.passiveTrip)) return ThermalState::fair;
  return ThermalState::nominal;
}

}  // namespace

constinit const ThermalSnapshot ThermalSnapshot::empty{};

ThermalState thermalState(const ports::ThermalReading& reading) {
  if (reading.systemState) {
    const int state = *reading.systemState;
    return state >= 0 && state <= 3 ? static_cast<ThermalState>(state) : ThermalState::nominal;
  }
  auto worst = ThermalState::nominal;
  for (const auto& zone : reading.zones) worst = std::max(worst, zoneState(zone));
  return worst;
}

PowerSource readPowerSource(ports::PowerSources& sources) {
  const auto type = sources.providingSourceType();
  if (type == "Battery Power") return PowerSource::battery;
  if (type == "AC Power") return PowerSource::ac;
  return PowerSource::unknown;
}

}  // namespace vorli
