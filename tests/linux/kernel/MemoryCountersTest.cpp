#include "linux/kernel/MemoryCounters.h"
#include "tests/linux/RecordedTree.h"

#include <gtest/gtest.h>

namespace vorli::linuxhost {
namespace {

std::uint64_t pagesOfKibibytes(std::uint64_t kibibytes) {
  return kibibytes * 1024 / pageBytes;
}

TEST(MemoryCountersTest, readsThePageCountsOfALaptop) {
  const RecordedTree tree("laptop");
  MemoryCounters counters(tree.root());
  EXPECT_EQ(counters.pageSizeBytes(), pageBytes);
  const auto statistics = counters.readStatistics();
  ASSERT_TRUE(statistics);
  EXPECT_EQ(statistics->freeCount, pagesOfKibibytes(2104328));
  EXPECT_EQ(statistics->activeCount, pagesOfKibibytes(6120468));
  EXPECT_EQ(statistics->inactiveCount, pagesOfKibibytes(5803120));
  EXPECT_EQ(statistics->wireCount, pagesOfKibibytes(98304 + 300000 + 20480 + 61440));
  EXPECT_EQ(statistics->purgeableCount, pagesOfKibibytes(512000));
  EXPECT_EQ(statistics->speculativeCount, 0U);
  EXPECT_EQ(statistics->compressorPageCount, 0U);
  EXPECT_EQ(statistics->pageins, pagesOfKibibytes(41230480));
  EXPECT_EQ(statistics->swapins, 1024U);
  EXPECT_EQ(statistics->swapouts, 65536U);
  EXPECT_EQ(statistics->pageouts, 65536U);
  EXPECT_EQ(statistics->decompressions, 0U);
  EXPECT_EQ(counters.physicalMemoryBytes(), 16242340ULL * 1024);
  EXPECT_EQ(counters.readSwapUsage(), (ports::SwapUsage{(8388604U - 8126460ULL) * 1024, 8388604ULL * 1024}));
}

TEST(MemoryCountersTest, pressureIsReturnedUnjudged) {
  const RecordedTree tree("laptop");
  const auto pressure = MemoryCounters(tree.root()).readPressure();
  EXPECT_FALSE(pressure.kernelLevel);
  EXPECT_EQ(pressure.someStallPercent, 1.53);
  EXPECT_EQ(pressure.fullStallPercent, 0.25);
  EXPECT_EQ(pressure.availableBytes, 9712604ULL * 1024);
  EXPECT_EQ(pressure.totalBytes, 16242340ULL * 1024);
}

TEST(MemoryCountersTest, aLongTableIsReadBeyondItsFirstPage) {
  const RecordedTree tree("server");
  const auto statistics = MemoryCounters(tree.root()).readStatistics();
  ASSERT_TRUE(statistics);
  EXPECT_EQ(statistics->swapins, 200000U);
  EXPECT_EQ(statistics->swapouts, 12582911U);
}

TEST(MemoryCountersTest, anOldKernelWithoutPressureAndAvailableMemoryStillCounts) {
  const RecordedTree tree("no-psi");
  MemoryCounters counters(tree.root());
  const auto statistics = counters.readStatistics();
  ASSERT_TRUE(statistics);
  EXPECT_EQ(statistics->freeCount, pagesOfKibibytes(201320));
  EXPECT_EQ(statistics->purgeableCount, 0U);
  EXPECT_EQ(counters.readSwapUsage(), (ports::SwapUsage{0, 0}));
  const auto pressure = counters.readPressure();
  EXPECT_FALSE(pressure.someStallPercent);
  EXPECT_FALSE(pressure.fullStallPercent);
  EXPECT_FALSE(pressure.availableBytes);
  EXPECT_EQ(pressure.totalBytes, 1018332ULL * 1024);
}

TEST(MemoryCountersTest, swapOnZramCountsAsCompression) {
  const RecordedTree tree("zram");
  MemoryCounters counters(tree.root());
  auto statistics = counters.readStatistics();
  ASSERT_TRUE(statistics);
  EXPECT_EQ(statistics->compressorPageCount, 524288000U / pageBytes);
  EXPECT_EQ(statistics->decompressions, 2400000U * 512 / pageBytes);
  EXPECT_EQ(statistics->compressions, 6400000U * 512 / pageBytes);
  EXPECT_EQ(statistics->swapins, 0U);
  EXPECT_EQ(statistics->swapouts, 0U);
  EXPECT_EQ(statistics->pageouts, 0U);

  // 500 more pages come back from zram, and 3 from a disk.
  tree.write("proc/vmstat", "pswpin 300503\npswpout 800000\n");
  tree.write("sys/block/zram0/stat",
             "0 0 " + std::to_string(2400000 + 500 * pageBytes / 512) + " 0 0 0 6400000 0\n");
  const auto later = counters.readStatistics();
  ASSERT_TRUE(later);
  EXPECT_EQ(later->decompressions - statistics->decompressions, 500U);
  EXPECT_EQ(later->swapins - statistics->swapins, 3U);
  EXPECT_EQ(later->pageouts, 0U);
}

TEST(MemoryCountersTest, zswapHasCountersOfItsOwn) {
  const RecordedTree tree("zswap");
  const auto statistics = MemoryCounters(tree.root()).readStatistics();
  ASSERT_TRUE(statistics);
  EXPECT_EQ(statistics->compressorPageCount, pagesOfKibibytes(204800));
  EXPECT_EQ(statistics->decompressions, 50000U);
  EXPECT_EQ(statistics->compressions, 203600U);
  EXPECT_EQ(statistics->swapins, 700U);
  EXPECT_EQ(statistics->swapouts, 900U);
}

TEST(MemoryCountersTest, theFilesAreReadOncePerReading) {
  const RecordedTree tree("no-psi");
  MemoryCounters counters(tree.root());
  ASSERT_TRUE(counters.readStatistics());
  tree.write("proc/meminfo", "MemTotal: 4096 kB\nMemFree: 1024 kB\nSwapTotal: 8 kB\nSwapFree: 2 kB\n");
  EXPECT_EQ(counters.physicalMemoryBytes(), 1018332ULL * 1024);
  EXPECT_EQ(counters.readSwapUsage(), (ports::SwapUsage{0, 0}));
  EXPECT_EQ(counters.physicalMemoryBytes(), 4096ULL * 1024);
  EXPECT_EQ(counters.readSwapUsage(), (ports::SwapUsage{6 * 1024, 8 * 1024}));
  EXPECT_EQ(counters.readStatistics()->freeCount, pagesOfKibibytes(1024));
}

TEST(MemoryCountersTest, moreFreeSwapThanThereIsCountsAsNoneUsed) {
  const RecordedTree tree;
  tree.write("proc/meminfo", "MemTotal: 4096 kB\nMemFree: 1024 kB\nSwapTotal: 8 kB\nSwapFree: 9 kB\n");
  EXPECT_EQ(MemoryCounters(tree.root()).readSwapUsage(), (ports::SwapUsage{0, 8 * 1024}));
}

TEST(MemoryCountersTest, hostileContentsGiveNothing) {
  const RecordedTree tree("hostile");
  MemoryCounters counters(tree.root());
  EXPECT_FALSE(counters.readStatistics());
  EXPECT_FALSE(counters.readSwapUsage());
  EXPECT_EQ(counters.physicalMemoryBytes(), 0U);
  EXPECT_EQ(counters.readPressure(), ports::PressureReading{});
}

TEST(MemoryCountersTest, hostileCountersBesideGoodMemoryCountAsZero) {
  const RecordedTree tree("hostile");
  tree.write("proc/meminfo", "MemTotal: 4096 kB\nMemFree: 1024 kB\nSwapTotal: 8 kB\n");
  const auto statistics = MemoryCounters(tree.root()).readStatistics();
  ASSERT_TRUE(statistics);
  EXPECT_EQ(statistics->swapins, 0U);
  EXPECT_EQ(statistics->swapouts, 0U);
  EXPECT_EQ(statistics->decompressions, 0U);
}

TEST(MemoryCountersTest, aReadingWithoutItsCountersFailsAndTheNextOneIsComplete) {
  const RecordedTree tree("laptop");
  const std::string counted = "pgpgin 10\npswpin 1024\npswpout 65536\n";
  tree.write("proc/vmstat", counted);
  MemoryCounters counters(tree.root());
  ASSERT_TRUE(counters.readStatistics());
  tree.write("proc/vmstat", "");
  EXPECT_FALSE(counters.readStatistics());
  tree.write("proc/vmstat", counted);
  const auto statistics = counters.readStatistics();
  ASSERT_TRUE(statistics);
  EXPECT_EQ(statistics->swapins, 1024U);  // no change that could be mistaken for traffic
  EXPECT_EQ(statistics->swapouts, 65536U);
}

TEST(MemoryCountersTest, anAbsentTableOfCountersIsAFailedReading) {
  const RecordedTree tree;
  tree.write("proc/meminfo", "MemTotal: 4096 kB\nMemFree: 1024 kB\n");
  MemoryCounters counters(tree.root());
  EXPECT_FALSE(counters.readStatistics());
  tree.write("proc/vmstat", "nr_free_pages 256\n");
  const auto statistics = counters.readStatistics();
  ASSERT_TRUE(statistics);  // a kernel may lack single counters
  EXPECT_EQ(statistics->swapins, 0U);
}

TEST(MemoryCountersTest, aMachineWithoutAnyOfTheFilesGivesNothing) {
  const RecordedTree tree;
  MemoryCounters counters(tree.root());
  EXPECT_FALSE(counters.readStatistics());
  EXPECT_EQ(counters.physicalMemoryBytes(), 0U);
}

TEST(MemoryCountersTest, aFIFOOrAFolderInPlaceOfAFileGivesNothing) {
  const RecordedTree tree("laptop");
  tree.replaceByFIFO("proc/meminfo");
  tree.replaceByFolder("proc/pressure/memory");
  MemoryCounters counters(tree.root());
  EXPECT_FALSE(counters.readStatistics());
  EXPECT_EQ(counters.readPressure(), ports::PressureReading{});
}

TEST(MemoryCountersTest, theRunningKernelIsUnderstood) {
  MemoryCounters counters;
  const auto statistics = counters.readStatistics();
  ASSERT_TRUE(statistics);
  const auto total = counters.physicalMemoryBytes();
  EXPECT_GT(statistics->freeCount, 0U);
  EXPECT_LT((statistics->freeCount + statistics->activeCount + statistics->inactiveCount) * pageBytes, total);
  EXPECT_GT(statistics->wireCount, 0U);
  EXPECT_GT(statistics->pageins, 0U);
  EXPECT_LE(counters.readPressure().availableBytes, total);
}

}  // namespace
}  // namespace vorli::linuxhost
