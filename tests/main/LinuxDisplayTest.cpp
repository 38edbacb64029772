#include "main/LinuxDisplay.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <optional>
#include <string>

namespace vorli {
namespace {

constexpr const char* platform = "QT_QPA_PLATFORM";

struct X11PreferenceTest : testing::Test {
  X11PreferenceTest() {
    set("DISPLAY", ":7");
    set(platform, std::nullopt);
  }

  static void set(const char* name, const std::optional<std::string>& value) {
    if (value) {
      setenv(name, value->c_str(), 1);
    } else {
      unsetenv(name);
    }
  }
  static std::optional<std::string> chosen() {
    const char* const value = std::getenv(platform);
    return value ? std::optional<std::string>(value) : std::nullopt;
  }
};

TEST_F(X11PreferenceTest, lastsNoLongerThanItsObjectSoThatNoOtherProgramInheritsIt) {
  {
    const X11Preference preference;
    EXPECT_EQ(chosen(), "xcb");
  }
  EXPECT_EQ(chosen(), std::nullopt);
}

TEST_F(X11PreferenceTest, leavesTheChoiceOfTheUserAlone) {
  set(platform, "wayland");
  {
    const X11Preference preference;
    EXPECT_EQ(chosen(), "wayland");
  }
  EXPECT_EQ(chosen(), "wayland");
}

TEST_F(X11PreferenceTest, needsADisplay) {
  set("DISPLAY", std::nullopt);
  const X11Preference preference;
  EXPECT_EQ(chosen(), std::nullopt);
}

}  // namespace
}  // namespace vorli
