#include "macos/kernel/ThermalSensors.h"
#include "tests/macos/runtime/Machine.h"

#include <gtest/gtest.h>
#include <utility>

namespace vorli::machost {
namespace {

TEST(ThermalSensorsTest, theSystemsVerdictIsZeroToThreeAndNoZones) {
  const std::pair<NSProcessInfoThermalState, int> states[] = {{NSProcessInfoThermalStateNominal, 0},
                                                              {NSProcessInfoThermalStateFair, 1},
                                                              {NSProcessInfoThermalStateSerious, 2},
                                                              {NSProcessInfoThermalStateCritical, 3}};
  for (const auto& [state, number] : states) {
    macfake::machine().thermalState = state;
    EXPECT_EQ(ThermalSensors().readThermal(), (ports::ThermalReading{.systemState = number, .zones = {}}));
  }
}

TEST(ThermalSensorsTest, lowPowerModeIsReadEachTime) {
  ThermalSensors sensors;
  EXPECT_FALSE(sensors.isLowPowerModeEnabled());
  macfake::machine().isLowPower = true;
  EXPECT_TRUE(sensors.isLowPowerModeEnabled());
}

}  // namespace
}  // namespace vorli::machost
