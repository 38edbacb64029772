#include "linux/kernel/ThreadPriority.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <thread>

namespace vorli::linuxhost {
namespace {

TEST(ThreadPriorityTest, onlyTheCallingThreadIsLowered) {
  const int before = getpriority(PRIO_PROCESS, 0);
  int lowered = before;
  std::thread([&] {
    lowerThreadPriority();
    lowered = getpriority(PRIO_PROCESS, 0);
  }).join();
  EXPECT_EQ(lowered, std::min(before + 5, 19));
  EXPECT_EQ(getpriority(PRIO_PROCESS, 0), before);
}

}  // namespace
}  // namespace vorli::linuxhost
