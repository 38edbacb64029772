#include "formats/VMStat.h"

#include <gtest/gtest.h>

namespace vorli::formats {
namespace {

TEST(VMStatTest, readsTheUsedCounters) {
  EXPECT_EQ(parseVMStat("nr_free_pages 256\npgpgin 41230480\npgpgout 20\npswpin 1024\npswpout 65536\n"
                        "pgalloc_dma 0\nzswpin 5\nzswpout 6\n"),
            (VMStat{.kibibytesIn = 41230480, .swapIn = 1024, .swapOut = 65536, .zswapIn = 5, .zswapOut = 6}));
}

TEST(VMStatTest, missingCountersAreZero) {
  EXPECT_EQ(parseVMStat(""), VMStat{});
  EXPECT_EQ(parseVMStat("nr_free_pages 256\n"), VMStat{});
  EXPECT_EQ(parseVMStat("pswpout 65536\n"), (VMStat{.swapOut = 65536}));
}

TEST(VMStatTest, namesAreComparedWhole) {
  EXPECT_EQ(parseVMStat("pswpin_more 5\npswpi 6\npswpin 7"), (VMStat{.swapIn = 7}));
}

TEST(VMStatTest, aCounterThatIsCutOffIsZero) {
  EXPECT_EQ(parseVMStat("pgpgin 10\npswpin"), (VMStat{.kibibytesIn = 10}));
  EXPECT_EQ(parseVMStat("pgpgin 10\npswpin "), (VMStat{.kibibytesIn = 10}));
  EXPECT_EQ(parseVMStat("pgpgin 10\npswpin \n"), (VMStat{.kibibytesIn = 10}));
}

TEST(VMStatTest, aCounterThatIsNotANumberOrDoesNotFitIsZero) {
  EXPECT_EQ(parseVMStat("pswpin 18446744073709551615\n").swapIn, 18446744073709551615U);
  for (const char* text : {"pswpin 18446744073709551616\n", "pswpin -1\n", "pswpin +1\n", "pswpin 1.5\n",
                           "pswpin 0x10\n", "pswpin 1 2\n", "pswpin many\n"}) {
    EXPECT_EQ(parseVMStat(text), VMStat{}) << text;
  }
}

}  // namespace
}  // namespace vorli::formats
