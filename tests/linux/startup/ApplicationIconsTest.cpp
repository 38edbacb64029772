#include "linux/startup/ApplicationIcons.h"
#include "tests/linux/RecordedTree.h"

#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>

namespace vorli::linuxhost {
namespace {

struct ApplicationIconsTest : testing::Test {
  ApplicationIconsTest() {
    theme("shared/hicolor", "", "16x16/apps,48x48/apps,256x256/apps",
          "[16x16/apps]\nSize=16\nType=Fixed\n[48x48/apps]\nSize=48\nType=Fixed\n"
          "[256x256/apps]\nSize=256\nType=Fixed\n");
    theme("shared/Paper", "Stone,hicolor", "any", "[any]\nSize=64\nType=Fixed\n");
    theme("shared/Stone", "Paper", "any", "[any]\nSize=32\nType=Fixed\n");
  }

  std::string path(const std::string& name) const { return tree.path(name).string(); }
  void theme(const std::string& folder, const std::string& inherits, const std::string& folders,
             const std::string& groups) const {
    tree.write(folder + "/index.theme",
               "[Icon Theme]\nInherits=" + inherits + "\nDirectories=" + folders + "\n" + groups);
  }
  // Writes an entry with that icon.
  std::string entry(const std::string& icon) const {
    tree.write("a.desktop", "[Desktop Entry]\nType=Application\nName=A\nExec=a\nIcon=" + icon + "\n");
    return path("a.desktop");
  }
  std::string found(const std::string& icon, int pixels = 40) {
    return icons.image(entry(icon), pixels).value_or("none");
  }

  RecordedTree tree;
  std::string chosen;
  ApplicationIcons icons{{{path("own"), path("shared")}, {path("pixmaps")}}, [this] { return chosen; }};
};

TEST_F(ApplicationIconsTest, takesTheSizeThatServesBest) {
  tree.write("shared/hicolor/16x16/apps/acme.png", "small");
  tree.write("shared/hicolor/48x48/apps/acme.png", "middle");
  tree.write("shared/hicolor/256x256/apps/acme.png", "large");
  EXPECT_EQ(found("acme", 40), "middle");
  EXPECT_EQ(found("acme", 48), "middle");
  EXPECT_EQ(found("acme", 49), "large");
  EXPECT_EQ(found("acme", 512), "large");
  EXPECT_EQ(found("acme.png"), "middle");
  EXPECT_EQ(found("tea"), "none");
}

TEST_F(ApplicationIconsTest, theUsersOwnFoldersComeFirst) {
  tree.write("shared/hicolor/48x48/apps/acme.png", "shared");
  tree.write("own/hicolor/48x48/apps/acme.png", "own");
  EXPECT_EQ(found("acme"), "own");
}

TEST_F(ApplicationIconsTest, theChosenThemeComesBeforeItsFallbacksOnceItIsNoticed) {
  tree.write("shared/hicolor/48x48/apps/acme.png", "hicolor");
  tree.write("shared/hicolor/48x48/apps/tea.png", "hicolor");
  tree.write("shared/Stone/any/tea.png", "Stone");
  tree.write("shared/Paper/any/acme.png", "Paper");
  chosen = "Paper";
  EXPECT_EQ(found("acme"), "hicolor");
  icons.lookAgain();
  EXPECT_EQ(found("acme"), "Paper");
  EXPECT_EQ(found("tea"), "Stone");
  chosen = "../Paper";
  icons.lookAgain();
  EXPECT_EQ(found("acme"), "hicolor");
}

TEST_F(ApplicationIconsTest, anImageWithoutAThemeComesLast) {
  tree.write("pixmaps/acme.png", "loose");
  EXPECT_EQ(found("acme"), "loose");
  tree.write("shared/hicolor/16x16/apps/acme.png", "small");
  icons.lookAgain();
  EXPECT_EQ(found("acme"), "small");
}

TEST_F(ApplicationIconsTest, aPausedEntryKeepsItsIcon) {
  tree.write("shared/hicolor/48x48/apps/acme.png", "middle");
  tree.write(
      "b.desktop.vorli-disabled",
      "[Desktop Entry]\nHidden=true\nX-Vorli-Paused=true\nType=Application\nName=B\nExec=b\nIcon=acme\n");
  EXPECT_EQ(icons.image(path("b.desktop"), 40), "middle");
}

TEST_F(ApplicationIconsTest, anEntryMayNameAFile) {
  tree.write("opt/acme.png", "file");
  EXPECT_EQ(found(path("opt/acme.png")), "file");
  EXPECT_EQ(found(path("opt/none.png")), "none");
  EXPECT_EQ(found(path("opt/acme.svg")), "none");
  EXPECT_EQ(found("../opt/acme"), "none");
}

TEST_F(ApplicationIconsTest, onlyOrdinaryFilesOfModestSizeAreRead) {
  ASSERT_EQ(mkfifo(path("pipe.png").c_str(), 0600), 0);
  EXPECT_EQ(found(path("pipe.png")), "none");
  const std::size_t limit = std::size_t{4} * 1024 * 1024;
  tree.write("large.png", std::string(limit, 'x'));
  EXPECT_EQ(found(path("large.png")).size(), limit);
  tree.write("large.png", std::string(limit + 1, 'x'));
  EXPECT_EQ(found(path("large.png")), "none");
}

TEST_F(ApplicationIconsTest, onlyAnEntryHasAnIcon) {
  EXPECT_EQ(icons.image(path("none.desktop"), 40), std::nullopt);
  tree.write("text.desktop", "Icon=acme\n");
  EXPECT_EQ(icons.image(path("text.desktop"), 40), std::nullopt);
  EXPECT_EQ(found(""), "none");
}

}  // namespace
}  // namespace vorli::linuxhost
