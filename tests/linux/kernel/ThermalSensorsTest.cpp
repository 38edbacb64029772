#include "linux/kernel/ThermalSensors.h"
#include "tests/linux/RecordedTree.h"

#include <gtest/gtest.h>

namespace vorli::linuxhost {
namespace {

using Zones = std::vector<ports::ThermalZone>;

constexpr auto none = std::nullopt;

TEST(ThermalSensorsTest, readsTheZonesOfALaptopWithTheirTripPoints) {
  const RecordedTree tree("laptop");
  const auto reading = ThermalSensors(tree.root()).readThermal();
  EXPECT_FALSE(reading.systemState);
  // Zones are in the order of their names; the zone of the radio that is off is left out.
  EXPECT_EQ(reading.zones,
            (Zones{{47000, 95000, 99000, 105000}, {52000, 86000, none, none}, {-5000, none, none, 115000}}));
}

TEST(ThermalSensorsTest, temperaturesAreReadEachTimeAndAZoneMayStopReporting) {
  const RecordedTree tree("laptop");
  ThermalSensors sensors(tree.root());
  sensors.readThermal();
  tree.write("sys/class/thermal/thermal_zone0/temp", "99500\n");
  tree.write("sys/class/thermal/thermal_zone1/temp", "\n");
  EXPECT_EQ(sensors.readThermal().zones, (Zones{{99500, 95000, 99000, 105000}, {-5000, none, none, 115000}}));
}

TEST(ThermalSensorsTest, newZonesAndMovedTripPointsAreFoundAtTheNextLook) {
  const RecordedTree tree;
  ThermalSensors sensors(tree.root());
  EXPECT_TRUE(sensors.readThermal().zones.empty());
  tree.write("sys/class/thermal/thermal_zone0/temp", "1000\n");
  for (int reading = 1; reading < ThermalSensors::readingsBetweenLooks; ++reading) {
    EXPECT_TRUE(sensors.readThermal().zones.empty());
  }
  EXPECT_EQ(sensors.readThermal().zones, (Zones{{1000, none, none, none}}));
}

TEST(ThermalSensorsTest, aMachineWithoutSensorsIsFine) {
  const RecordedTree tree("server");
  EXPECT_EQ(ThermalSensors(tree.root()).readThermal(), ports::ThermalReading{});
}

TEST(ThermalSensorsTest, hostileZonesAreLeftOutAndHostileTripPointsIgnored) {
  const RecordedTree tree("hostile");
  EXPECT_EQ(ThermalSensors(tree.root()).readThermal().zones, (Zones{{40000, none, 80000, none}}));
}

TEST(ThermalSensorsTest, aFIFOOrAFolderInPlaceOfAFileIsNoZone) {
  const RecordedTree tree("laptop");
  tree.replaceByFIFO("sys/class/thermal/thermal_zone0/temp");
  tree.replaceByFolder("sys/class/thermal/thermal_zone1/temp");
  tree.replaceByFIFO("sys/class/thermal/thermal_zone10/trip_point_0_type");
  EXPECT_EQ(ThermalSensors(tree.root()).readThermal().zones, (Zones{{-5000, none, none, none}}));
}

TEST(ThermalSensorsTest, theFirmwaresLowPowerProfileIsLowPowerMode) {
  const RecordedTree tree("laptop");
  ThermalSensors sensors(tree.root());
  EXPECT_FALSE(sensors.isLowPowerModeEnabled());
  tree.write("sys/firmware/acpi/platform_profile", "low-power\n");
  EXPECT_TRUE(sensors.isLowPowerModeEnabled());
  tree.write("sys/firmware/acpi/platform_profile", "performance\n");
  EXPECT_FALSE(sensors.isLowPowerModeEnabled());
}

TEST(ThermalSensorsTest, theUsersChoiceOfPowerSaverIsLowPowerModeWhereTheFirmwareHasNone) {
  const RecordedTree tree("server");
  ThermalSensors sensors(tree.root());
  EXPECT_FALSE(sensors.isLowPowerModeEnabled());
  tree.write("var/lib/power-profiles-daemon/state.ini", "[State]\nDriver=placeholder\nProfile=power-saver\n");
  EXPECT_TRUE(sensors.isLowPowerModeEnabled());
  tree.remove("var/lib/power-profiles-daemon/state.ini");
  tree.write("var/lib/power-profiles-daemon/state.ini", "[State]\nDriver=placeholder\nProfile=balanced\n");
  EXPECT_FALSE(sensors.isLowPowerModeEnabled());
}

TEST(ThermalSensorsTest, aProfileThatOnlyBeginsAlikeIsNotLowPowerMode) {
  const RecordedTree tree("hostile");
  EXPECT_FALSE(ThermalSensors(tree.root()).isLowPowerModeEnabled());
}

}  // namespace
}  // namespace vorli::linuxhost
