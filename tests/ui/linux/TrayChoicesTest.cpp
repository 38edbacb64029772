#include "ui/linux/PanelAppearance.h"
#include "ui/linux/TrayHost.h"
#include "ui/status/ClickAnchor.h"

#include <array>
#include <cstdint>
#include <gtest/gtest.h>
#include <limits>

namespace vorli::ui {
namespace {

using Presence = StatusNotifierWatcher::Presence;

TEST(PreferredTrayTest, nothingIsDecidedBeforeTheBusHasAnswered) {
  EXPECT_EQ(preferredTray(Presence::unknown, true), TrayKind::undecided);
  EXPECT_EQ(preferredTray(Presence::unknown, false), TrayKind::undecided);
}

TEST(PreferredTrayTest, aPanelOnTheBusWinsOverTheX11Tray) {
  EXPECT_EQ(preferredTray(Presence::present, true), TrayKind::statusNotifier);
  EXPECT_EQ(preferredTray(Presence::present, false), TrayKind::statusNotifier);
}

TEST(PreferredTrayTest, aRegistryThatNoPanelReadsIsNoTray) {
  EXPECT_EQ(preferredTray(Presence::withoutHost, true), TrayKind::xembed);
  EXPECT_EQ(preferredTray(Presence::withoutHost, false), TrayKind::none);
  EXPECT_EQ(preferredTray(Presence::absent, true), TrayKind::xembed);
  EXPECT_EQ(preferredTray(Presence::absent, false), TrayKind::none);
}

QByteArray trayColours(std::uint32_t red, std::uint32_t green, std::uint32_t blue) {
  const std::array<std::uint32_t, 12> words{red, green, blue};
  return {reinterpret_cast<const char*>(words.data()), sizeof words};
}

TEST(TrayColoursTest, aLightForegroundMeansADarkPanel) {
  EXPECT_EQ(hasLightForeground(trayColours(61166, 61166, 60652)), true);
  EXPECT_EQ(hasLightForeground(trayColours(11822, 13364, 13878)), false);
}

TEST(TrayColoursTest, greenIsLightAndBlueIsDark) {
  EXPECT_EQ(hasLightForeground(trayColours(0, 65535, 0)), true);
  EXPECT_EQ(hasLightForeground(trayColours(0, 0, 65535)), false);
}

TEST(TrayColoursTest, bytesOfAnotherLengthAreIgnored) {
  EXPECT_EQ(hasLightForeground({}), std::nullopt);
  EXPECT_EQ(hasLightForeground(trayColours(1, 2, 3).left(47)), std::nullopt);
}

const ScreenPlace single{{0, 0, 1920, 1080}, {0, 29, 1920, 1051}, 1.0};
const ScreenPlace doubled{{0, 0, 960, 540}, {0, 0, 960, 520}, 2.0};
const ScreenPlace beside{{1920, 0, 960, 540}, {1920, 0, 960, 540}, 2.0};

TEST(ClickAnchorTest, extremeCoordinatesAreHandled) {
  constexpr int least = std::numeric_limits<int>::min(), most = std::numeric_limits<int>::max();
  for (const QPoint far : {QPoint(least, least), QPoint(most, most), QPoint(least, 10), QPoint(10, most)}) {
    EXPECT_EQ(logicalPoint(far, {beside, single}), std::nullopt);
  }
}

TEST(ClickAnchorTest, aPointBeforeTheOriginIsNotOnTheScreen) {
  EXPECT_EQ(logicalPoint({1919, 13}, {beside}), std::nullopt);
  EXPECT_EQ(logicalPoint({1920, -1}, {beside}), std::nullopt);
  EXPECT_EQ(logicalPoint({1920, 0}, {beside}), QPoint(1920, 0));
  EXPECT_EQ(logicalPoint({3839, 1079}, {beside}), QPoint(2879, 539));
  EXPECT_EQ(logicalPoint({3840, 0}, {beside}), std::nullopt);
}

TEST(ClickAnchorTest, aPointIsDividedByTheRatioOfItsScreen) {
  EXPECT_EQ(logicalPoint({1910, 13}, {single}), QPoint(1910, 13));
  EXPECT_EQ(logicalPoint({1911, 1067}, {doubled}), QPoint(955, 533));
  EXPECT_EQ(logicalPoint({2020, 101}, {single, beside}), QPoint(1970, 50));
}

TEST(ClickAnchorTest, aPointOutsideOfAllScreensIsIgnored) {
  EXPECT_EQ(logicalPoint({5000, 13}, {single}), std::nullopt);
  EXPECT_EQ(logicalPoint({-1, 13}, {single}), std::nullopt);
  EXPECT_EQ(logicalPoint({5, 5}, {}), std::nullopt);
}

TEST(ClickAnchorTest, theIconIsTakenToBeAsLargeAsThePanelIsThick) {
  EXPECT_EQ(assumedIconRectangle({1910, 13}, {single}), QRect(1896, -1, 29, 29));
  EXPECT_EQ(assumedIconRectangle({955, 533}, {doubled}), QRect(945, 523, 20, 20));
}

TEST(ClickAnchorTest, anUnreportedPanelHasTheUsualThickness) {
  EXPECT_EQ(assumedIconRectangle({2000, 10}, {single, beside}), QRect(1984, -6, 32, 32));
}

TEST(ClickAnchorTest, aReservedEdgeThatIsNoPanelDoesNotMakeAHugeIcon) {
  const ScreenPlace wide{{0, 0, 1920, 1080}, {0, 400, 1920, 680}, 1.0};
  EXPECT_EQ(assumedIconRectangle({100, 100}, {wide}).width(), 96);
}

}  // namespace
}  // namespace vorli::ui
