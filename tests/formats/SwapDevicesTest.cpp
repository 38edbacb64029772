#include "formats/SwapDevices.h"

#include <gtest/gtest.h>
#include <vector>

namespace vorli::formats {
namespace {

using DeviceNumbers = std::vector<std::uint32_t>;

TEST(SwapDevicesTest, listsTheZramDevicesInTheirOrder) {
  EXPECT_EQ(parseZramSwaps("Filename Type Size Used Priority\n/dev/zram12 partition 9 1 100\n"
                           "/dev/sda2 partition 1 1 -2\n/dev/zram0 partition 9 1 100\n"),
            (DeviceNumbers{12, 0}));
  EXPECT_EQ(parseZramSwaps("/dev/zram4294967295"), (DeviceNumbers{4294967295}));
}

TEST(SwapDevicesTest, otherSwapsAreNotListed) {
  EXPECT_EQ(parseZramSwaps(""), DeviceNumbers{});
  EXPECT_EQ(parseZramSwaps("Filename Type Size Used Priority\n"), DeviceNumbers{});
  EXPECT_EQ(parseZramSwaps("/swapfile file 1 1 -2\n/dev/dm-1 partition 1 1 -3\n"), DeviceNumbers{});
  EXPECT_EQ(parseZramSwaps("/dev/zram\n/dev/zram-1\n/dev/zram0/../sda\n/dev/zram4294967296\n"
                           "/dev/zram18446744073709551616\n"),
            DeviceNumbers{});
}

TEST(SwapDevicesTest, trafficIsTheThirdAndTheSeventhNumber) {
  EXPECT_EQ(parseBlockTraffic("  1  2  3  4  5  6  7  8\n"), (BlockTraffic{3, 7}));
  EXPECT_EQ(parseBlockTraffic("1 2 0 4 5 6 18446744073709551615"), (BlockTraffic{0, 18446744073709551615U}));
}

TEST(SwapDevicesTest, trafficIsEmptyWhenANumberIsMissingOrDoesNotFit) {
  for (const char* text : {"", "\n", "1 2", "1 2 3 4 5 6", "1 2 -3 4 5 6 7", "1 2 3 4 5 6 seven",
                           "1 2 18446744073709551616 4 5 6 7", "1 2 3 4 5 6 18446744073709551616"}) {
    EXPECT_FALSE(parseBlockTraffic(text)) << text;
  }
}

TEST(SwapDevicesTest, zramMemoryIsTheThirdNumber) {
  EXPECT_EQ(parseZramMemoryUsed("2048 512 524288 0\n"), 524288U);
  EXPECT_EQ(parseZramMemoryUsed("    0    0    0"), 0U);
}

TEST(SwapDevicesTest, zramMemoryIsEmptyWhenItIsMissingOrDoesNotFit) {
  for (const char* text : {"", "2048", "2048 512", "2048 512 -1", "2048 512 x", "1 2 18446744073709551616"}) {
    EXPECT_FALSE(parseZramMemoryUsed(text)) << text;
  }
}

}  // namespace
}  // namespace vorli::formats
