#include "macos/kernel/CPUCounters.h"
#include "tests/macos/runtime/Kernel.h"
#include "tests/macos/runtime/Machine.h"

#include <array>
#include <cmath>
#include <gtest/gtest.h>

namespace vorli::machost {
namespace {

TEST(CPUCountersTest, readsTheTicksOfEachState) {
  macfake::kernel().load = {{100, 200, 4'000'000'000, 50}};
  EXPECT_EQ(CPUCounters().readTicks(),
            (ports::CPUTicks{.user = 100, .system = 200, .idle = 4'000'000'000, .nice = 50}));
}

TEST(CPUCountersTest, aKernelThatRefusesGivesNothing) {
  macfake::kernel().status = KERN_FAILURE;
  EXPECT_FALSE(CPUCounters().readTicks());
}

TEST(CPUCountersTest, processorsThatRestAreCountedApart) {
  CPUCounters counters;
  EXPECT_EQ(counters.activeProcessorCount(), 6);
  EXPECT_EQ(counters.processorCount(), 8);
}

TEST(CPUCountersTest, loadAveragesAreRead) {
  std::array<double, 3> averages{NAN, NAN, NAN};
  CPUCounters().readLoadAverages(averages);
  for (const double average : averages) EXPECT_GE(average, 0.0);
}

TEST(CPUCountersTest, theRightToAskIsGivenBack) {
  { const CPUCounters counters; }
  EXPECT_EQ(macfake::kernel().hostReferences, 0);
}

}  // namespace
}  // namespace vorli::machost
