#include "macos/kernel/PowerSources.h"
#include "tests/macos/runtime/Foundation.h"
#include "tests/macos/runtime/Machine.h"

#include <gtest/gtest.h>
#include <optional>

namespace vorli::machost {
namespace {

using Kind = ports::PowerSupply::Kind;

std::optional<Kind> kindInUse() {
  PowerSources sources;
  const auto supplies = sources.readSupplies();
  if (supplies.empty()) return std::nullopt;
  EXPECT_EQ(supplies.size(), 1u);
  EXPECT_EQ(supplies.front().state, ports::PowerSupply::State::supplying);
  return supplies.front().kind;
}

TEST(PowerSourcesTest, theKindOfTheSupplyInUseIsReadFromItsName) {
  macfake::machine().powerSource = macfake::string("Battery Power");
  EXPECT_EQ(kindInUse(), Kind::battery);
  macfake::machine().powerSource = @"AC Power";
  EXPECT_EQ(kindInUse(), Kind::line);
  macfake::machine().powerSource = @"UPS Power";
  EXPECT_EQ(kindInUse(), Kind::uninterruptible);
  for (NSString* other in @[ @"ac power", @"" ]) {
    macfake::machine().powerSource = other;
    EXPECT_FALSE(kindInUse());
  }
}

TEST(PowerSourcesTest, withoutARecordThereIsNoInformation) {
  macfake::machine().powerSource = @"AC Power";
  macfake::machine().hasPowerSources = false;
  EXPECT_FALSE(kindInUse());
}

TEST(PowerSourcesTest, aRecordWithoutANameIsNoInformation) {
  EXPECT_FALSE(kindInUse());
}

}  // namespace
}  // namespace vorli::machost
