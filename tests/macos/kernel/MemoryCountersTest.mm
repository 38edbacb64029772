#include "macos/kernel/MemoryCounters.h"
#include "tests/macos/runtime/Kernel.h"
#include "tests/macos/runtime/Machine.h"

#include <gtest/gtest.h>
#include <optional>

namespace vorli::machost {
namespace {

TEST(MemoryCountersTest, readsThePageCountsAndCountersOfTheKernel) {
  auto& kernel = macfake::kernel();
  kernel.memory = {.free_count = 1,
                   .active_count = 2,
                   .inactive_count = 3,
                   .wire_count = 4,
                   .pageins = 5'000'000'000,
                   .pageouts = 6,
                   .purgeable_count = 7,
                   .speculative_count = 8,
                   .decompressions = 9'000'000'000,
                   .compressions = 10,
                   .swapins = 11,
                   .swapouts = 12,
                   .compressor_page_count = 13};
  MemoryCounters counters;
  EXPECT_EQ(counters.readStatistics(), (ports::VMStatistics{.freeCount = 1,
                                                            .activeCount = 2,
                                                            .inactiveCount = 3,
                                                            .wireCount = 4,
                                                            .compressorPageCount = 13,
                                                            .speculativeCount = 8,
                                                            .purgeableCount = 7,
                                                            .pageins = 5'000'000'000,
                                                            .pageouts = 6,
                                                            .swapins = 11,
                                                            .swapouts = 12,
                                                            .decompressions = 9'000'000'000,
                                                            .compressions = 10}));
  EXPECT_EQ(counters.pageSizeBytes(), 16384U);
  EXPECT_EQ(counters.physicalMemoryBytes(), 17'179'869'184U);
}

TEST(MemoryCountersTest, theKernelIsAskedForSixtyTwoWordsAndMayKnowFewer) {
  auto& kernel = macfake::kernel();
  kernel.memory.free_count = 21;
  kernel.memory.compressor_page_count = 34;
  kernel.memoryWords = 33;  // up to the compressor's count
  MemoryCounters counters;
  const auto statistics = counters.readStatistics();
  EXPECT_EQ(kernel.askedMemoryWords, 62U);
  ASSERT_TRUE(statistics);
  EXPECT_EQ(statistics->freeCount, 21U);
  EXPECT_EQ(statistics->compressorPageCount, 34U);
}

TEST(MemoryCountersTest, aKernelThatRefusesGivesNothingAndTheNextReadingIsWholeAgain) {
  auto& kernel = macfake::kernel();
  MemoryCounters counters;
  kernel.status = KERN_FAILURE;
  EXPECT_FALSE(counters.readStatistics());
  kernel.status = KERN_SUCCESS;
  EXPECT_TRUE(counters.readStatistics());
}

TEST(MemoryCountersTest, swapHasUsedAndTotalBytes) {
  macfake::kernel().setValue(
      "vm.swapusage",
      xsw_usage{
          .xsu_total = 3000, .xsu_avail = 2000, .xsu_used = 1000, .xsu_pagesize = 16384, .xsu_encrypted = 1});
  EXPECT_EQ(MemoryCounters().readSwapUsage(), (ports::SwapUsage{.usedBytes = 1000, .totalBytes = 3000}));
}

TEST(MemoryCountersTest, swapThatCannotBeReadIsUnknown) {
  EXPECT_FALSE(MemoryCounters().readSwapUsage());
}

TEST(MemoryCountersTest, pressureIsTheKernelsOwnVerdictAlone) {
  macfake::kernel().setValue("kern.memorystatus_vm_pressure_level", std::int32_t{4});
  EXPECT_EQ(MemoryCounters().readPressure(), ports::PressureReading{.kernelLevel = 4});
}

TEST(MemoryCountersTest, withoutAVerdictPressureIsEmpty) {
  EXPECT_EQ(MemoryCounters().readPressure(), ports::PressureReading{});
}

TEST(MemoryCountersTest, theRightToAskIsKeptAndGivenBack) {
  {
    MemoryCounters counters;
    for (int reading = 0; reading < 3; ++reading) EXPECT_TRUE(counters.readStatistics());
    EXPECT_EQ(macfake::kernel().hostReferences, 1);
  }
  EXPECT_EQ(macfake::kernel().hostReferences, 0);
}

}  // namespace
}  // namespace vorli::machost
