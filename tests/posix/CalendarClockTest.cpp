#include "posix/CalendarClock.h"

#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>
#include <tuple>

namespace vorli::posix {
namespace {

TEST(CalendarClockTest, agreesWithTheStampsOfTheFileSystem) {
  std::string pattern = (std::filesystem::temp_directory_path() / "vorli-clock-XXXXXX").string();
  const auto folder = std::filesystem::path(mkdtemp(pattern.data()));
  const CalendarClock calendar;
  const Date before = calendar.now();
  std::ofstream(folder / "file") << "x";
  struct stat status {};
  stat((folder / "file").c_str(), &status);
  std::filesystem::remove_all(folder);
  const Date written{static_cast<double>(status.st_mtim.tv_sec) +
                     static_cast<double>(status.st_mtim.tv_nsec) / 1e9};
  constexpr double kernelTick = 1.0;  // time stamps use the clock of the last tick, which a busy host delays
  EXPECT_GE(written - before, -kernelTick);
  EXPECT_LE(written - calendar.now(), 0.0);
}

TEST(CalendarClockTest, localTimeIsThatOfTheUsersZone) {
  const char* before = std::getenv("TZ");
  const std::string zone = before ? before : "";
  setenv("TZ", "UTC0", 1);
  const auto atHome = CalendarClock().localTime(Date{1'772'341'204.9});
  // Stands for a user who travels while the program runs.
  setenv("TZ", "EST5", 1);
  const auto local = CalendarClock().localTime(Date{1'772'341'204.9});  // 2026-03-01 05:00:04.9 UTC
  const auto day = CalendarClock().localTime(Date{1'772'341'199.9});    // a second before midnight there
  before ? setenv("TZ", zone.c_str(), 1) : unsetenv("TZ");
  tzset();
  EXPECT_EQ(std::tie(local.year, local.month, local.day), std::tuple(2026, 3, 1));
  EXPECT_EQ(std::tie(local.hour, local.minute), std::tuple(0, 0));
  EXPECT_EQ(std::tie(atHome.hour, atHome.minute), std::tuple(5, 0));
  EXPECT_EQ(std::tie(day.month, day.day, day.hour, day.minute), std::tuple(2, 28, 23, 59));
}

}  // namespace
}  // namespace vorli::posix
