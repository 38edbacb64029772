#include "linux/kernel/ProcessStart.h"

#include <gtest/gtest.h>
#include <unistd.h>

namespace vorli::linuxhost {
namespace {

std::string line(const std::string& name) {
  return "42 (" + name +
         ") S 7 42 42 0 -1 4194560 1 0 0 0 5 6 0 0 20 0 1 0 123456 1000 10 18446744073709551615\n";
}

TEST(ProcessStartTest, readsTheFieldsAfterAnyName) {
  for (const std::string name : {"plain", "with blank", "a) b", ") S 1 (", "line\nbreak", "\xff\xfe", ""}) {
    const auto start = parseProcessStart(line(name));
    ASSERT_TRUE(start) << name;
    EXPECT_EQ(start->parentPID, 7) << name;
    EXPECT_EQ(start->ticks, 123456u) << name;
  }
}

TEST(ProcessStartTest, aTruncatedLineIsRefused) {
  const auto whole = line("x");
  for (std::size_t length = 0; length < whole.find("123456"); ++length) {
    EXPECT_FALSE(parseProcessStart(whole.substr(0, length))) << length;
  }
  EXPECT_FALSE(parseProcessStart("no stat line at all"));
}

TEST(ProcessStartTest, knowsItsOwnParent) {
  const auto start = readProcessStart(getpid());
  ASSERT_TRUE(start);
  EXPECT_EQ(start->parentPID, getppid());
  EXPECT_GT(start->startedAt.secondsSince1970, 1.6e9);
}

}  // namespace
}  // namespace vorli::linuxhost
