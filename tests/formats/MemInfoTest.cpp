#include "formats/MemInfo.h"

#include <gtest/gtest.h>
#include <optional>
#include <string_view>

namespace vorli::formats {
namespace {

TEST(MemInfoTest, readsTheUsedLinesInBytes) {
  const auto info = parseMemInfo(
      "MemTotal:       16242340 kB\nMemFree:         2104328 kB\nMemAvailable:    8200000 kB\n"
      "Buffers:          400000 kB\nActive:          6120468 kB\nInactive:        5803120 kB\n"
      "Active(anon):    1111111 kB\nUnevictable:       98304 kB\nSwapTotal:       8388604 kB\n"
      "SwapFree:        8126460 kB\nZswap:              1024 kB\nZswapped:           4096 kB\n"
      "KReclaimable:     512000 kB\nSUnreclaim:       300000 kB\nKernelStack:       20480 kB\n"
      "PageTables:        61440 kB\nHugePages_Total:       0\n");
  constexpr MemInfo expected{.total = 16242340ULL * 1024,
                             .free = 2104328ULL * 1024,
                             .available = 8200000ULL * 1024,
                             .active = 6120468ULL * 1024,
                             .inactive = 5803120ULL * 1024,
                             .unevictable = 98304ULL * 1024,
                             .swapTotal = 8388604ULL * 1024,
                             .swapFree = 8126460ULL * 1024,
                             .zswap = 1024ULL * 1024,
                             .reclaimable = 512000ULL * 1024,
                             .slabUnreclaimable = 300000ULL * 1024,
                             .kernelStack = 20480ULL * 1024,
                             .pageTables = 61440ULL * 1024};
  EXPECT_EQ(info, expected);
}

TEST(MemInfoTest, missingLinesAreZeroAndMissingAvailableMemoryIsEmpty) {
  const auto info = parseMemInfo("MemTotal: 4096 kB\nMemFree: 1024 kB\n");
  EXPECT_EQ(info, (MemInfo{.total = 4096 * 1024, .free = 1024 * 1024, .available = {}}));
  EXPECT_FALSE(info->available);
}

TEST(MemInfoTest, needsTotalAndFreeMemory) {
  for (const char* text :
       {"", "\n", "MemTotal: 4096 kB\n", "MemFree: 1024 kB\n", "MemTotal: 0 kB\nMemFree: 0 kB\n",
        "MemTotal: kB\nMemFree: 1024 kB\n", "memtotal: 4096 kB\nmemfree: 1024 kB\n"}) {
    EXPECT_FALSE(parseMemInfo(text)) << text;
  }
}

TEST(MemInfoTest, isEmptyWhenCutOffBeforeTheFreeMemory) {
  constexpr std::string_view text = "MemTotal: 4096 kB\nMemFree: ";
  for (std::size_t length = 0; length <= text.size(); ++length) {
    EXPECT_FALSE(parseMemInfo(text.substr(0, length))) << length;
  }
}

TEST(MemInfoTest, aSizeThatDoesNotFitInBytesIsMissing) {
  const auto info = parseMemInfo(
      "MemTotal: 4096 kB\nMemFree: 0 kB\nMemAvailable: 18014398509481984 kB\n"
      "Active: 18446744073709551615 kB\nInactive: 18014398509481983 kB\n");
  ASSERT_TRUE(info);
  EXPECT_EQ(info->free, 0U);
  EXPECT_EQ(info->available, std::nullopt);
  EXPECT_EQ(info->active, 0U);
  EXPECT_EQ(info->inactive, 18446744073709550592U);
  EXPECT_FALSE(parseMemInfo("MemTotal: 18446744073709551615 kB\nMemFree: 1 kB\n"));
}

TEST(MemInfoTest, aValueThatIsNotANumberIsMissing) {
  const auto info = parseMemInfo(
      "MemTotal: 4096 kB\nMemFree: 1 kB\nMemAvailable: -1 kB\nActive: many kB\nInactive: 1.5 kB\n");
  ASSERT_TRUE(info);
  EXPECT_EQ(info->available, std::nullopt);
  EXPECT_EQ(info->active, 0U);
  EXPECT_EQ(info->inactive, 0U);
  EXPECT_FALSE(parseMemInfo("MemTotal: -4096 kB\nMemFree: 1 kB\n"));
}

}  // namespace
}  // namespace vorli::formats
