#include "linux/applications/EmbeddedIconOwners.h"
#include "tests/linux/applications/WaylandFixture.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <vector>

namespace vorli::linuxhost {
namespace {

// The upper bits of a window's number are its client's.
struct EmbeddedIconOwnersTest : testing::Test {
  using Windows = std::vector<std::uint32_t>;
  static constexpr std::uint32_t root = 0x000001E7;
  static constexpr std::uint32_t tray = 0x00A00001, socket = 0x00A0001F;
  static constexpr std::uint32_t icon = 0x00C00005, otherIcon = 0x00E00002;
  static constexpr std::uint32_t frame = 0x00800033, panel = 0x00600010;

  static Windows guests(const std::vector<EmbeddedIconOwners::Place>& places, std::uint32_t trayWindow) {
    return EmbeddedIconOwners::guestsOfTray(places, trayWindow, 0x001FFFFF);
  }
};

TEST_F(EmbeddedIconOwnersTest, iconsAreWindowsOfOtherClientsInsideATray) {
  EXPECT_EQ(guests({{icon, socket}, {otherIcon, tray}, {socket, tray}}, tray), (Windows{icon, otherIcon}));
}

TEST_F(EmbeddedIconOwnersTest, windowsThatMoveElsewhereAreNotIcons) {
  EXPECT_EQ(guests({{icon, root}, {icon, frame}, {otherIcon, panel}, {tray, frame}}, tray), Windows{});
}

TEST_F(EmbeddedIconOwnersTest, withoutATrayNoWindowIsAnIconNotEvenInTheRootWindowThatHasNoClient) {
  EXPECT_EQ(guests({{icon, root}, {icon, socket}}, 0), Windows{});
}

struct EmbeddedIconOwnersWithoutXServerTest : WaylandFixture {};

TEST_F(EmbeddedIconOwnersWithoutXServerTest, nothingIsReportedAndNothingWakesTheProgram) {
  bool isCalled = false;
  const EmbeddedIconOwners owners(scheduler, [&isCalled](std::int32_t) { isCalled = true; });
  EXPECT_EQ(scheduler.pendingTimers(), 0U);
  settle();
  EXPECT_FALSE(isCalled);
}

}  // namespace
}  // namespace vorli::linuxhost
