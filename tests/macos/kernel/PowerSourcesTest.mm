#include "macos/kernel/PowerSources.h"
#include "tests/macos/runtime/Foundation.h"
#include "tests/macos/runtime/Machine.h"

#include <gtest/gtest.h>

namespace vorli::machost {
namespace {

TEST(PowerSourcesTest, theNameIsHandedOnAsItIs) {
  macfake::machine().powerSource = macfake::string("Battery Power");
  EXPECT_EQ(PowerSources().providingSourceType(), "Battery Power");
  macfake::machine().powerSource = @"AC Power";
  EXPECT_EQ(PowerSources().providingSourceType(), "AC Power");
  macfake::machine().powerSource = @"UPS Power";
  EXPECT_EQ(PowerSources().providingSourceType(), "UPS Power");
}

TEST(PowerSourcesTest, withoutARecordThereIsNoInformation) {
  macfake::machine().powerSource = @"AC Power";
  macfake::machine().hasPowerSources = false;
  EXPECT_FALSE(PowerSources().providingSourceType());
}

TEST(PowerSourcesTest, aRecordWithoutANameIsNoInformation) {
  EXPECT_FALSE(PowerSources().providingSourceType());
}

}  // namespace
}  // namespace vorli::machost
