#include "sampling/ThermalSnapshot.h"

namespace vorli {
namespace {

using Trip = std::optional<std::int64_t>;

ports::ThermalZone zoneAt(std::int64_t temperature, Trip passive, Trip hot, Trip critical) {
  return {.temperature = temperature, .passiveTrip = passive, .hotTrip = hot, .criticalTrip = critical};
}

ThermalState stateOf(std::vector<ports::ThermalZone> zones) {
  ports::ThermalReading reading;
  reading.zones = std::move(zones);
  return thermalState(reading);
}

TEST(ThermalSnapshotTest, theEmptySnapshotIsNominalOnAnUnknownSource) {
  EXPECT_EQ(ThermalSnapshot::empty.thermalState, ThermalState::nominal);
  EXPECT_FALSE(ThermalSnapshot::empty.lowPowerMode);
  EXPECT_EQ(ThermalSnapshot::empty.powerSource, PowerSource::unknown);
  EXPECT_EQ(ThermalSnapshot::empty.capturedAt, Date::distantPast());
}

TEST(ThermalStateTest, theSystemsVerdictRulesAndUnknownOnesAreNominal) {
  ports::ThermalReading reading;
  reading.zones.push_back(zoneAt(99000, {}, {}, 1000));
  for (const auto& [raw, state] : {std::pair(0, ThermalState::nominal),
                                   {1, ThermalState::fair},
                                   {2, ThermalState::serious},
                                   {3, ThermalState::critical},
                                   {4, ThermalState::nominal},
                                   {-1, ThermalState::nominal}}) {
    reading.systemState = raw;
    EXPECT_EQ(thermalState(reading), state) << raw;
  }
}

TEST(ThermalStateTest, aMachineWithoutSensorsIsNominal) {
  EXPECT_EQ(stateOf({}), ThermalState::nominal);
}

TEST(ThermalStateTest, aZoneIsJudgedByItsTripPointsEdgesIncluded) {
  for (const auto& [temperature, state] : {std::pair(69999, ThermalState::nominal),
                                           {70000, ThermalState::fair},
                                           {84999, ThermalState::fair},
                                           {85000, ThermalState::serious},
                                           {94999, ThermalState::serious},
                                           {95000, ThermalState::critical}}) {
    EXPECT_EQ(stateOf({zoneAt(temperature, 70000, 85000, 95000)}), state) << temperature;
  }
}

TEST(ThermalStateTest, theWorstZoneCounts) {
  const auto cool = zoneAt(30000, {}, {}, 95000);
  const auto warm = zoneAt(71000, 70000, {}, {});
  const auto hot = zoneAt(86000, {}, 85000, {});
  EXPECT_EQ(stateOf({warm, hot, cool}), ThermalState::serious);
}

TEST(ThermalStateTest, tripPointsThatAreMissingOrNotAboveZeroAreNeverReached) {
  EXPECT_EQ(stateOf({zoneAt(120000, {}, {}, {}), zoneAt(30000, 0, -1, -274000)}), ThermalState::nominal);
}

struct PowerSourceTest : testing::Test {
  using Kind = ports::PowerSupply::Kind;
  using State = ports::PowerSupply::State;

  static PowerSource sourceOf(const std::vector<ports::PowerSupply>& supplies) {
    return powerSource(supplies);
  }
};

TEST_F(PowerSourceTest, withoutASupplyItIsUnknown) {
  EXPECT_EQ(sourceOf({}), PowerSource::unknown);
}

TEST_F(PowerSourceTest, aLineThatIsOnlineCountsEvenWhenItCannotKeepUp) {
  EXPECT_EQ(sourceOf({{Kind::line, State::supplying}}), PowerSource::ac);
  EXPECT_EQ(sourceOf({{Kind::line, State::supplying}, {Kind::battery, State::supplying}}), PowerSource::ac);
  EXPECT_EQ(sourceOf({{Kind::uninterruptible, State::supplying}, {Kind::line, State::supplying}}),
            PowerSource::ac);
}

TEST_F(PowerSourceTest, oneOfTwoLinesIsEnough) {
  EXPECT_EQ(sourceOf({{Kind::line, State::idle}, {Kind::line, State::supplying}}), PowerSource::ac);
}

TEST_F(PowerSourceTest, withADeadLineTheBatteryCarriesTheMachineWhateverItsControllerSays) {
  for (const auto line : {State::idle, State::unknown}) {
    EXPECT_EQ(sourceOf({{Kind::line, line}}), PowerSource::unknown);
    for (const auto state : {State::supplying, State::idle, State::unknown}) {
      EXPECT_EQ(sourceOf({{Kind::line, line}, {Kind::battery, state}}), PowerSource::battery);
    }
    EXPECT_EQ(sourceOf({{Kind::line, line}, {Kind::battery, State::charging}}), PowerSource::ac);
  }
}

TEST_F(PowerSourceTest, withoutAReportedLineTheBatteryDecides) {
  EXPECT_EQ(sourceOf({{Kind::battery, State::supplying}}), PowerSource::battery);
  EXPECT_EQ(sourceOf({{Kind::battery, State::charging}}), PowerSource::ac);
  EXPECT_EQ(sourceOf({{Kind::battery, State::idle}}), PowerSource::ac);
  EXPECT_EQ(sourceOf({{Kind::battery, State::unknown}}), PowerSource::unknown);
}

TEST_F(PowerSourceTest, oneOfTwoBatteriesDischargingIsEnough) {
  for (const auto other : {State::charging, State::idle, State::unknown}) {
    EXPECT_EQ(sourceOf({{Kind::battery, other}, {Kind::battery, State::supplying}}), PowerSource::battery);
  }
}

TEST_F(PowerSourceTest, anUninterruptibleSupplyIsNeitherALineNorABattery) {
  EXPECT_EQ(sourceOf({{Kind::uninterruptible, State::supplying}}), PowerSource::unknown);
  EXPECT_EQ(sourceOf({{Kind::uninterruptible, State::supplying}, {Kind::battery, State::supplying}}),
            PowerSource::unknown);
  EXPECT_EQ(sourceOf({{Kind::uninterruptible, State::idle}, {Kind::battery, State::supplying}}),
            PowerSource::battery);
  EXPECT_EQ(sourceOf({{Kind::uninterruptible, State::charging}}), PowerSource::ac);
  EXPECT_EQ(sourceOf({{Kind::uninterruptible, State::idle}}), PowerSource::ac);
  EXPECT_EQ(sourceOf({{Kind::uninterruptible, State::unknown}}), PowerSource::unknown);
}

}  // namespace
}  // namespace vorli
