#include "linux/kernel/PowerSources.h"
#include "tests/linux/RecordedTree.h"

#include <gtest/gtest.h>

namespace vorli::linuxhost {
namespace {

const std::string supplies = "sys/class/power_supply/";

struct PowerSourcesTest : testing::Test {
  void line(const std::string& online) { supply("AC", "Mains", "online", online); }
  void battery(const std::string& status) { supply("BAT0", "Battery", "status", status); }
  void supply(const std::string& name, const std::string& type, const std::string& file,
              const std::string& state) {
    tree.write(supplies + name + "/type", type + "\n");
    tree.write(supplies + name + "/" + file, state + "\n");
  }
  std::string source() { return PowerSources(tree.root()).providingSourceType().value_or("none"); }

  RecordedTree tree;
};

TEST(PowerSourcesLaptopTest, pullingThePlugIsSeenAtTheNextReading) {
  const RecordedTree tree("laptop");
  PowerSources sources(tree.root());
  EXPECT_EQ(sources.providingSourceType(), "AC Power");
  tree.write(supplies + "AC/online", "0\n");
  tree.write(supplies + "BAT0/status", "Discharging\n");
  EXPECT_EQ(sources.providingSourceType(), "Battery Power");
}

TEST_F(PowerSourcesTest, withoutAnySupplyThereIsNoInformation) {
  EXPECT_EQ(source(), "none");
  tree.write(supplies + ".hidden", "");
  EXPECT_EQ(source(), "none");
}

TEST_F(PowerSourcesTest, aLineThatIsOnlineCountsEvenWhenItCannotKeepUp) {
  line("1");
  battery("Discharging");
  EXPECT_EQ(source(), "AC Power");
}

TEST_F(PowerSourcesTest, aLineOfAProgrammableVoltageIsOnlineToo) {
  supply("ucsi-source-psy-USBC000:001", "USB", "online", "2");
  battery("Charging");
  EXPECT_EQ(source(), "AC Power");
}

TEST_F(PowerSourcesTest, withADeadLineTheBatteryCarriesTheMachineWhateverItsControllerSays) {
  line("0");
  for (const char* status : {"Discharging", "Full", "Not charging", "Unknown", ""}) {
    battery(status);
    EXPECT_EQ(source(), "Battery Power") << status;
  }
  battery("Charging");
  EXPECT_EQ(source(), "AC Power");
}

TEST_F(PowerSourcesTest, withoutAReportedLineTheBatteryTells) {
  battery("Discharging");
  EXPECT_EQ(source(), "Battery Power");
  battery("Full");
  EXPECT_EQ(source(), "AC Power");
  battery("Not charging");
  EXPECT_EQ(source(), "AC Power");
  battery("Unknown");
  EXPECT_EQ(source(), "none");
}

TEST_F(PowerSourcesTest, oneOfTwoBatteriesDischargingIsEnough) {
  battery("Full");
  supply("BAT1", "Battery", "status", "Discharging");
  EXPECT_EQ(source(), "Battery Power");
}

TEST_F(PowerSourcesTest, aMousesBatteryIsNotTheMachines) {
  supply("hidpp_battery_0", "Battery", "status", "Discharging");
  tree.write(supplies + "hidpp_battery_0/scope", "Device\n");
  EXPECT_EQ(source(), "none");
}

TEST_F(PowerSourcesTest, anUninterruptibleSupplyHasItsOwnName) {
  supply("ups0", "UPS", "status", "Discharging");
  EXPECT_EQ(source(), "UPS Power");
  supply("ups0", "UPS", "status", "Charging");
  EXPECT_EQ(source(), "AC Power");
}

TEST_F(PowerSourcesTest, aSupplyThatComesIsFoundAtTheNextLook) {
  PowerSources sources(tree.root());
  EXPECT_FALSE(sources.providingSourceType());
  line("1");
  for (int reading = 1; reading < PowerSources::readingsBetweenLooks; ++reading) {
    EXPECT_FALSE(sources.providingSourceType());
  }
  EXPECT_EQ(sources.providingSourceType(), "AC Power");
}

TEST_F(PowerSourcesTest, aSupplyThatFallsSilentIsNoSource) {
  line("1");
  PowerSources sources(tree.root());
  EXPECT_EQ(sources.providingSourceType(), "AC Power");
  tree.write(supplies + "AC/online", "");
  EXPECT_FALSE(sources.providingSourceType());
}

TEST_F(PowerSourcesTest, unreadableFilesAreNoSupply) {
  tree.write(supplies + "BAT0", "a file");
  line("1");
  tree.replaceByFIFO(supplies + "AC/online");
  supply("USB", "USB", "online", "1");
  tree.replaceByFIFO(supplies + "USB/type");
  EXPECT_EQ(source(), "none");
}

TEST(PowerSourcesHostileTest, nonsenseIsNoInformation) {
  const RecordedTree tree("hostile");
  EXPECT_FALSE(PowerSources(tree.root()).providingSourceType());
}

}  // namespace
}  // namespace vorli::linuxhost
