#include "formats/IconTheme.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace vorli::formats {
namespace {

TEST(IconTheme, listsItsFoldersAndTheThemesBehindIt) {
  const auto theme = parseIconTheme(
      "[Icon Theme]\nName=Paper\nInherits=Adwaita, hicolor\nDirectories=48x48/apps,any,16x16/apps\n"
      "ScaledDirectories=48x48@2/apps\n\n"
      "[48x48/apps]\nSize=48\nType=Fixed\n[16x16/apps]\r\nSize=16\r\nType=Threshold\r\nThreshold=3\r\n"
      "[any]\nSize=64\nMinSize=8\nMaxSize=512\nType=Scalable\n[48x48@2/"
      "apps]\nSize=48\nScale=2\nType=Fixed\n");
  EXPECT_EQ(theme.inherits, (std::vector<std::string>{"Adwaita", "hicolor"}));
  EXPECT_EQ(theme.folders,
            (std::vector<IconFolder>{
                {"48x48/apps", 48, 48}, {"any", 8, 512}, {"16x16/apps", 13, 19}, {"48x48@2/apps", 96, 96}}));
}

TEST(IconTheme, aFolderWithoutATypeServesTwoPixelsMoreAndLess) {
  const auto theme = parseIconTheme("[Icon Theme]\nDirectories=a\n[a]\nSize=32\n");
  EXPECT_EQ(theme.folders, (std::vector<IconFolder>{{"a", 30, 34}}));
}

TEST(IconTheme, leavesOutFoldersWithoutASizeOrOutsideOfTheTheme) {
  const auto theme = parseIconTheme(
      "[Icon "
      "Theme]\nInherits=..,a/b,hicolor\nDirectories=../up,/root,a/../../b,none,zero,huge,turned,good//x\n"
      "[../up]\nSize=48\n[/root]\nSize=48\n[a/../../b]\nSize=48\n[none]\nType=Fixed\n[zero]\nSize=0\n"
      "[huge]\nSize=4097\n[turned]\nType=Scalable\nSize=8\nMinSize=9\nMaxSize=8\n[good//x]\nSize=48\n");
  EXPECT_EQ(theme.inherits, (std::vector<std::string>{"hicolor"}));
  EXPECT_TRUE(theme.folders.empty());
}

TEST(IconTheme, aNameHasAtMost255Bytes) {
  const std::string longest(255, 'n');
  const auto theme =
      parseIconTheme("[Icon Theme]\nInherits=" + longest + "," + longest + "n\nDirectories=" + longest + "," +
                     longest + "n\n[" + longest + "]\nSize=48\n[" + longest + "n]\nSize=48\n");
  EXPECT_EQ(theme.inherits, std::vector<std::string>{longest});
  EXPECT_EQ(theme.folders, (std::vector<IconFolder>{{longest, 46, 50}}));
}

TEST(IconTheme, aSizeIsAtMost4096AndAScaleAtMost8) {
  const auto theme = parseIconTheme(
      "[Icon Theme]\nDirectories=a,b\n[a]\nSize=4096\nScale=8\nType=Fixed\n"
      "[b]\nSize=4096\nScale=9\nType=Fixed\n");
  EXPECT_EQ(theme.folders, (std::vector<IconFolder>{{"a", 32768, 32768}, {"b", 4096, 4096}}));
}

TEST(IconTheme, aTextThatIsNotAThemeIsEmpty) {
  EXPECT_EQ(parseIconTheme(""), IconTheme());
  EXPECT_EQ(parseIconTheme("Directories=a\n[a]\nSize=32\n"), IconTheme());
  EXPECT_EQ(parseIconTheme("[Icon Theme\nDirectories=a\n"), IconTheme());
}

TEST(IconTheme, aThemeWithTooManyFoldersIsCut) {
  std::string list = "[Icon Theme]\nDirectories=", groups;
  for (int i = 0; i < 5000; ++i) {
    const auto name = "f" + std::to_string(i);
    list += name + ",";
    groups += "[" + name + "]\nSize=48\n";
  }
  EXPECT_EQ(parseIconTheme(list + "\n" + groups).folders.size(), 2048u);
}

TEST(IconTheme, aThemeWithTooManyThemesBehindItIsCut) {
  std::string inherits = "[Icon Theme]\nInherits=";
  for (int i = 1; i <= 33; ++i) inherits += "t" + std::to_string(i) + ",";
  const auto theme = parseIconTheme(inherits + "\n");
  EXPECT_EQ(theme.inherits.size(), 32u);
  EXPECT_EQ(theme.inherits.back(), "t32");
}

TEST(IconTheme, anImageIsRatherReducedThanEnlarged) {
  const IconFolder folder{"a", 38, 48};
  EXPECT_EQ(misfit(folder, 37), 1);
  EXPECT_EQ(misfit(folder, 38), 0);
  EXPECT_EQ(misfit(folder, 48), 0);
  EXPECT_GT(misfit(folder, 49), misfit({"b", 4096 * 8, 4096 * 8}, 49));
  EXPECT_GT(misfit(folder, 50), misfit(folder, 49));
}

}  // namespace
}  // namespace vorli::formats
