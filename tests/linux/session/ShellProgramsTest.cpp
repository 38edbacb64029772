#include "linux/session/ShellPrograms.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace vorli::linuxhost {
namespace {

bool isKnown(std::span<const ShellProgram> programs, std::string_view name) {
  return std::ranges::find(programs, name, &ShellProgram::processName) != programs.end();
}

TEST(ShellProgramsTest, panelsOfTheCommonDesktopsAreKnown) {
  for (const auto* name : {"xfce4-panel", "plasmashell", "mate-panel", "gnome-panel", "budgie-panel",
                           "cinnamon", "lxpanel", "lxqt-panel", "plank"}) {
    EXPECT_TRUE(isKnown(shellPanels(), name)) << name;
  }
}

TEST(ShellProgramsTest, fileManagersOfTheCommonDesktopsAreKnown) {
  for (const auto* name :
       {"Thunar", "thunar", "nautilus", "nemo", "caja", "dolphin", "pcmanfm", "pcmanfm-qt"})
    EXPECT_TRUE(isKnown(shellFileManagers(), name)) << name;
}

TEST(ShellProgramsTest, userKnowsAFileManagerByItsName) {
  EXPECT_EQ(nameOf({"dolphin", {}, {}, "Dolphin"}), "Dolphin");
  EXPECT_EQ(nameOf({"Thunar"}), "Thunar");
  for (const auto& program : shellFileManagers()) {
    const auto name = nameOf(program);
    EXPECT_TRUE(name.front() >= 'A' && name.front() <= 'Z') << name;
  }
}

TEST(ShellProgramsTest, shellThatIsTheCompositorToolIsNotRestarted) {
  EXPECT_FALSE(isKnown(shellPanels(), "gnome-shell"));
}

TEST(ShellProgramsTest, namesAreThoseOfTheKernel) {
  constexpr std::size_t longestName = 15;
  for (const auto programs : {shellPanels(), shellFileManagers()}) {
    for (const auto& program : programs) EXPECT_LE(program.processName.size(), longestName);
  }
}

}  // namespace
}  // namespace vorli::linuxhost
