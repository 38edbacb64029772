#include "linux/kernel/SwapTraffic.h"

#include <gtest/gtest.h>

namespace vorli::linuxhost {
namespace {

TEST(SwapTrafficTest, withoutZramEverythingWentToDisks) {
  SwapTraffic traffic;
  traffic.add({100, 200}, {});
  traffic.add({130, 260}, {});
  EXPECT_EQ(traffic.onDisks(), (PageTraffic{130, 260}));
  EXPECT_EQ(traffic.onZram(), (PageTraffic{}));
}

TEST(SwapTrafficTest, theShareOfZramIsSubtracted) {
  SwapTraffic traffic;
  traffic.add({100, 200}, {{0, {60, 150}}, {1, {10, 20}}});
  EXPECT_EQ(traffic.onDisks(), (PageTraffic{30, 30}));
  EXPECT_EQ(traffic.onZram(), (PageTraffic{70, 170}));
  traffic.add({150, 300}, {{0, {80, 190}}, {1, {40, 80}}});
  EXPECT_EQ(traffic.onDisks(), (PageTraffic{30, 30}));
  EXPECT_EQ(traffic.onZram(), (PageTraffic{120, 270}));
}

TEST(SwapTrafficTest, aDeviceReadSomePagesLaterNeverMakesTheDisksRunBackwards) {
  SwapTraffic traffic;
  traffic.add({100, 100}, {{0, {100, 100}}});
  traffic.add({110, 110}, {{0, {113, 110}}});
  EXPECT_EQ(traffic.onDisks(), (PageTraffic{0, 0}));
  traffic.add({120, 120}, {{0, {120, 120}}});
  EXPECT_EQ(traffic.onDisks(), (PageTraffic{3, 0}));
}

TEST(SwapTrafficTest, aRemovedDeviceCausesNoJump) {
  SwapTraffic traffic;
  traffic.add({5000, 5000}, {{0, {5000, 5000}}});
  traffic.add({5001, 5002}, {});
  EXPECT_EQ(traffic.onDisks(), (PageTraffic{1, 2}));
  EXPECT_EQ(traffic.onZram(), (PageTraffic{5000, 5000}));
}

TEST(SwapTrafficTest, aNewDeviceStartsFromItsPresentCounts) {
  SwapTraffic traffic;
  traffic.add({10, 10}, {});
  traffic.add({10, 10}, {{0, {700, 700}}});
  EXPECT_EQ(traffic.onZram(), (PageTraffic{0, 0}));
  traffic.add({14, 15}, {{0, {704, 705}}});
  EXPECT_EQ(traffic.onZram(), (PageTraffic{4, 5}));
  EXPECT_EQ(traffic.onDisks(), (PageTraffic{10, 10}));
}

TEST(SwapTrafficTest, aRecreatedDeviceCountsFromZero) {
  SwapTraffic traffic;
  traffic.add({900, 900}, {{0, {900, 900}}});
  traffic.add({905, 906}, {{0, {5, 6}}});
  EXPECT_EQ(traffic.onZram(), (PageTraffic{905, 906}));
  EXPECT_EQ(traffic.onDisks(), (PageTraffic{0, 0}));
}

}  // namespace
}  // namespace vorli::linuxhost
