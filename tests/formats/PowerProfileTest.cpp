#include "formats/PowerProfile.h"

#include <gtest/gtest.h>
#include <string_view>

namespace vorli::formats {
namespace {

TEST(PowerProfileTest, readsTheChosenProfile) {
  EXPECT_EQ(parsePowerProfile("[State]\nCpuDriver=intel_pstate\nProfile=power-saver\n"), "power-saver");
  EXPECT_EQ(parsePowerProfile("[State]\nProfile = balanced"), "balanced");
  EXPECT_EQ(parsePowerProfile("Profile=performance"), "performance");
}

TEST(PowerProfileTest, isEmptyWithoutAProfile) {
  for (const char* state : {"", "\n", "[State]\n", "Profile", "Profile=", "Profile= \n", "=power-saver"}) {
    EXPECT_EQ(parsePowerProfile(state), "") << state;
  }
}

TEST(PowerProfileTest, theKeyIsComparedWhole) {
  EXPECT_EQ(parsePowerProfile("[State]\nOldProfile=power-saver\n"), "");
  EXPECT_EQ(parsePowerProfile("[State]\nProfileOld=power-saver\nprofile=power-saver\n"), "");
  EXPECT_EQ(parsePowerProfile("OldProfile=power-saver\nProfile=balanced\n"), "balanced");
}

TEST(PowerProfileTest, theResultIsAPartOfTheState) {
  constexpr std::string_view state = "Profile= balanced \n";
  const auto profile = parsePowerProfile(state);
  EXPECT_EQ(profile, "balanced");
  EXPECT_EQ(profile.data(), state.data() + state.find("balanced"));
}

}  // namespace
}  // namespace vorli::formats
