#include "linux/kernel/ProcessStart.h"

#include <gtest/gtest.h>
#include <unistd.h>

namespace vorli::linuxhost {
namespace {

TEST(ProcessStartTest, aRunningProcessHasStartedAfterBoot) {
  const auto start = readProcessStart(getpid());
  ASSERT_TRUE(start);
  EXPECT_GT(start->ticks, 0U);
  EXPECT_GT(start->startedAt.secondsSince1970, 1.6e9);

  const auto again = readProcessStart(getpid());
  ASSERT_TRUE(again);
  EXPECT_EQ(again->ticks, start->ticks);
}

TEST(ProcessStartTest, aProcessThatDoesNotExistHasNoStart) {
  EXPECT_EQ(readProcessStart(0), std::nullopt);
}

}  // namespace
}  // namespace vorli::linuxhost
