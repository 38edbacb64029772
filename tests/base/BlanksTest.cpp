#include "base/Blanks.h"
#include "base/ShellWord.h"

#include <gtest/gtest.h>

namespace vorli {
namespace {

TEST(BlanksTest, blanksAndLineEndsAroundATextAreRemoved) {
  EXPECT_EQ(withoutBlanks(" \tlow power\r\n"), "low power");
  EXPECT_EQ(withoutBlanks("\r\n a\r\nb \t"), "a\r\nb");
  EXPECT_EQ(withoutBlanks(" \r\n\t"), "");
  EXPECT_EQ(withoutBlanks(""), "");
}

TEST(BlanksTest, otherSpacesAreLetters) {
  EXPECT_EQ(withoutBlanks("\u00A0a\v"), "\u00A0a\v");
  EXPECT_EQ(withoutBlanks({"\0 ", 2}), std::string_view("\0", 1));
}

TEST(BlanksTest, aCallerMayNameItsBlanks) {
  EXPECT_EQ(withoutBlanks(" \ttea\r\n", shellBlanks), "tea\r");
}

}  // namespace
}  // namespace vorli
