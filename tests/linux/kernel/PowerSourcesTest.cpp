#include "linux/kernel/PowerSources.h"
#include "tests/linux/RecordedTree.h"

#include <gtest/gtest.h>
#include <vector>

namespace vorli::linuxhost {
namespace {

using Kind = ports::PowerSupply::Kind;
using State = ports::PowerSupply::State;
using Supplies = std::vector<ports::PowerSupply>;

const std::string supplies = "sys/class/power_supply/";

Supplies readFrom(PowerSources& sources) {
  const auto read = sources.readSupplies();
  return {read.begin(), read.end()};
}

Supplies readFrom(const RecordedTree& tree) {
  PowerSources sources(tree.root());
  return readFrom(sources);
}

struct PowerSourcesTest : testing::Test {
  void line(const std::string& online) { supply("AC", "Mains", "online", online); }
  void battery(const std::string& status) { supply("BAT0", "Battery", "status", status); }
  void supply(const std::string& name, const std::string& type, const std::string& file,
              const std::string& state) {
    tree.write(supplies + name + "/type", type + "\n");
    tree.write(supplies + name + "/" + file, state + "\n");
  }
  Supplies read() { return readFrom(tree); }

  RecordedTree tree;
};

TEST(PowerSourcesLaptopTest, pullingThePlugIsSeenAtTheNextReading) {
  const RecordedTree tree("laptop");
  PowerSources sources(tree.root());
  EXPECT_EQ(readFrom(sources), (Supplies{{Kind::line, State::supplying}}));
  tree.write(supplies + "AC/online", "0\n");
  tree.write(supplies + "BAT0/status", "Discharging\n");
  EXPECT_EQ(readFrom(sources), (Supplies{{Kind::line, State::idle}, {Kind::battery, State::supplying}}));
}

TEST_F(PowerSourcesTest, withoutAnySupplyThereIsNoInformation) {
  EXPECT_EQ(read(), Supplies{});
  tree.write(supplies + ".hidden", "");
  EXPECT_EQ(read(), Supplies{});
}

TEST_F(PowerSourcesTest, noBatteryIsAskedWhileALineIsOnline) {
  battery("Discharging");
  supply("Z", "Mains", "online", "1");
  EXPECT_EQ(read(), (Supplies{{Kind::line, State::supplying}}));
}

TEST_F(PowerSourcesTest, aLineOfAProgrammableVoltageIsOnlineToo) {
  supply("ucsi-source-psy-USBC000:001", "USB", "online", "2");
  EXPECT_EQ(read(), (Supplies{{Kind::line, State::supplying}}));
}

TEST_F(PowerSourcesTest, aLineIsOnlineOrIdleOrUnknown) {
  for (const auto& [online, state] : {std::pair("1", State::supplying),
                                      {"0", State::idle},
                                      {"3", State::unknown},
                                      {"Discharging", State::unknown},
                                      {"", State::unknown}}) {
    line(online);
    EXPECT_EQ(read(), (Supplies{{Kind::line, state}})) << online;
  }
}

TEST_F(PowerSourcesTest, withADeadLineTheBatterysStateIsRead) {
  line("0");
  for (const auto& [status, state] : {std::pair("Discharging", State::supplying),
                                      {"Charging", State::charging},
                                      {"Full", State::idle},
                                      {"Not charging", State::idle},
                                      {"Unknown", State::unknown},
                                      {"1", State::unknown},
                                      {"", State::unknown}}) {
    battery(status);
    EXPECT_EQ(read(), (Supplies{{Kind::line, State::idle}, {Kind::battery, state}})) << status;
  }
}

TEST_F(PowerSourcesTest, bothOfTwoBatteriesAreReadWithoutALine) {
  battery("Full");
  supply("BAT1", "Battery", "status", "Discharging");
  EXPECT_EQ(read(), (Supplies{{Kind::battery, State::idle}, {Kind::battery, State::supplying}}));
}

TEST_F(PowerSourcesTest, aMousesBatteryIsNotTheMachines) {
  supply("hidpp_battery_0", "Battery", "status", "Discharging");
  tree.write(supplies + "hidpp_battery_0/scope", "Device\n");
  EXPECT_EQ(read(), Supplies{});
}

TEST_F(PowerSourcesTest, anUninterruptibleSupplyIsAKindOfItsOwnAndComesBeforeTheBattery) {
  battery("Full");
  supply("ups0", "UPS", "status", "Charging");
  EXPECT_EQ(read(), (Supplies{{Kind::uninterruptible, State::charging}, {Kind::battery, State::idle}}));
  supply("ups0", "UPS", "status", "Discharging");
  EXPECT_EQ(read(), (Supplies{{Kind::uninterruptible, State::supplying}}));
}

TEST_F(PowerSourcesTest, aSupplyThatComesIsFoundAtTheNextLook) {
  PowerSources sources(tree.root());
  EXPECT_EQ(readFrom(sources), Supplies{});
  line("1");
  for (int reading = 1; reading < PowerSources::readingsBetweenLooks; ++reading) {
    EXPECT_EQ(readFrom(sources), Supplies{});
  }
  EXPECT_EQ(readFrom(sources), (Supplies{{Kind::line, State::supplying}}));
}

TEST_F(PowerSourcesTest, aSupplyThatFallsSilentIsUnknown) {
  line("1");
  PowerSources sources(tree.root());
  EXPECT_EQ(readFrom(sources), (Supplies{{Kind::line, State::supplying}}));
  tree.write(supplies + "AC/online", "");
  EXPECT_EQ(readFrom(sources), (Supplies{{Kind::line, State::unknown}}));
}

TEST_F(PowerSourcesTest, unreadableFilesLeaveTheStateUnknown) {
  tree.write(supplies + "BAT0", "a file");
  line("1");
  tree.replaceByFIFO(supplies + "AC/online");
  supply("USB", "USB", "online", "1");
  tree.replaceByFIFO(supplies + "USB/type");
  EXPECT_EQ(read(), (Supplies{{Kind::line, State::unknown}}));
}

TEST(PowerSourcesHostileTest, nonsenseLeavesTheStateUnknown) {
  const RecordedTree tree("hostile");
  EXPECT_EQ(readFrom(tree), (Supplies{{Kind::battery, State::unknown}}));
}

}  // namespace
}  // namespace vorli::linuxhost
