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

PowerSource powerSource(std::span<const ports::PowerSupply> supplies) {
  using Kind = ports::PowerSupply::Kind;
  using State = ports::PowerSupply::State;
  const auto has = [supplies](Kind kind) {
    return std::ranges::find(supplies, kind, &ports::PowerSupply::kind) != supplies.end();
  };
  const auto any = [supplies](Kind kind, State state) {
    return std::ranges::find(supplies, ports::PowerSupply{kind, state}) != supplies.end();
  };

  if (any(Kind::line, State::supplying)) return PowerSource::ac;
  if (any(Kind::uninterruptible, State::supplying)) return PowerSource::unknown;
  if (any(Kind::battery, State::supplying)) return PowerSource::battery;
  if (any(Kind::battery, State::charging)) return PowerSource::ac;
  // When the lines are off, the battery powers the machine, whatever its controller still reports.
  if (has(Kind::line) && has(Kind::battery)) return PowerSource::battery;
  // Idle supplies, on a machine that does not report its lines.
  if (any(Kind::battery, State::idle)) return PowerSource::ac;
  if (any(Kind::uninterruptible, State::charging)) return PowerSource::ac;
  if (any(Kind::uninterruptible, State::idle)) return PowerSource::ac;
  return PowerSource::unknown;
}

}  // namespace vorli
