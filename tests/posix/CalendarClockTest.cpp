#include "posix/CalendarClock.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sys/stat.h>

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
  constexpr double kernelTick = 0.02;  // stamps are taken from the clock of the last tick
  EXPECT_GE(written - before, -kernelTick);
  EXPECT_LE(written - calendar.now(), 0.0);
}

}  // namespace
}  // namespace vorli::posix
