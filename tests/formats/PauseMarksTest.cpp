#include "formats/PauseMarks.h"

#include <string>

namespace vorli::formats {
namespace {

const std::string entry = "[Desktop Entry]\nType=Application\nExec=/bin/true\n";

TEST(PauseMarks, followTheGroupHeader) {
  EXPECT_EQ(
      withPauseMarks(entry, 1700000000),
      "[Desktop Entry]\nHidden=true\nX-Vorli-Paused=true\nX-Vorli-FirstSeen=1700000000\nType=Application\n"
      "Exec=/bin/true\n");
  EXPECT_EQ(withPauseMarks(entry, std::nullopt),
            "[Desktop Entry]\nHidden=true\nX-Vorli-Paused=true\nType=Application\nExec=/bin/true\n");
}

TEST(PauseMarks, areRemovedWithoutATrace) {
  for (const auto& content : {
           entry,
           std::string("# a comment\n\n  [Desktop Entry]  \r\nExec=x\r\n"),
           std::string("[Desktop Entry]\nExec=x"),
           std::string("[Desktop Entry]\nHidden=true\nExec=x\n"),
           std::string("[Desktop Entry]\nExec=x\n Hidden = false\n\n[Desktop Action a]\nHidden=false\n"),
           std::string("[Other]\na=b\n[Desktop Entry]\nX-Vorli-FirstSeen=1\n"),
           std::string("[Desktop Entry]\n"),
           std::string("[Desktop Entry]\n\0\xff\n", 19),
           std::string("[Desktop Entry]\nX-Vorli-FirstSeen=1\nX-Vorli-FirstSeen=2\nExec=x\n"),
           std::string("[Desktop Entry]\n#X-Vorli-Kept:Hidden=true\nHidden=false\n"),
           std::string("\xEF\xBB\xBF[Desktop Entry]\nExec=x\n"),
       }) {
    for (const std::optional<std::int64_t> seen :
         {std::optional<std::int64_t>(7), std::optional<std::int64_t>()}) {
      const auto marked = withPauseMarks(content, seen);
      ASSERT_TRUE(marked) << content;
      EXPECT_TRUE(hasPauseMarks(*marked));
      EXPECT_EQ(withoutPauseMarks(*marked), content);
    }
  }
}

TEST(PauseMarks, aLaterHiddenOfTheGroupCannotUndoThem) {
  const auto marked =
      withPauseMarks("[Desktop Entry]\nHidden=false\nHiddenToo=1\n[Other]\nHidden=false\n", {});
  EXPECT_EQ(
      marked,
      "[Desktop Entry]\nHidden=true\nX-Vorli-Paused=true\n#X-Vorli-Kept:Hidden=false\nHiddenToo=1\n[Other]\n"
      "Hidden=false\n");
}

TEST(PauseMarks, aSecondGroupOfTheSameNameCannotUndoThem) {
  const std::string content =
      "[Desktop Entry]\nExec=x\n[Other]\nHidden=false\n[Desktop Entry]\nHidden=false\n";
  const auto marked = withPauseMarks(content, {});
  ASSERT_TRUE(marked);
  EXPECT_TRUE(marked->ends_with("[Other]\nHidden=false\n[Desktop Entry]\n#X-Vorli-Kept:Hidden=false\n"));
  EXPECT_EQ(withoutPauseMarks(*marked), content);
}

TEST(PauseMarks, areNotSetTwice) {
  EXPECT_EQ(withPauseMarks(*withPauseMarks(entry, 5), 6), std::nullopt);
}

TEST(PauseMarks, belongToDesktopEntriesOnly) {
  for (const std::string content : {"", "\n", "Exec=x\n", "[Desktop Entry", "[Desktop Entry]",
                                    "#[Desktop Entry]\n", "[Desktop Entry] x\n"}) {
    EXPECT_EQ(withPauseMarks(content, 5), std::nullopt) << content;
    EXPECT_EQ(withoutPauseMarks(content), std::nullopt) << content;
  }
}

TEST(PauseMarks, anEntryThatIsHiddenWithoutThemIsNotPaused) {
  EXPECT_FALSE(hasPauseMarks("[Desktop Entry]\nHidden=true\nExec=x\n"));
  EXPECT_FALSE(hasPauseMarks("[Desktop Entry]\nX-Vorli-Paused=true\nHidden=true\n"));
  EXPECT_EQ(withoutPauseMarks("[Desktop Entry]\nHidden=true\nExec=x\n"), std::nullopt);
}

}  // namespace
}  // namespace vorli::formats
