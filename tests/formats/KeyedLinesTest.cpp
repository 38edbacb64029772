#include "formats/KeyedLines.h"

#include <gtest/gtest.h>

namespace vorli::formats {
namespace {

TEST(KeyedLinesTest, aValueIsTheRestOfTheLineOfItsKey) {
  KeyedLines lines("one 1\ntwo 22\nthree");
  EXPECT_EQ(lines.valueOf("one "), "1");
  EXPECT_EQ(lines.valueOf("two"), " 22");
  EXPECT_EQ(lines.valueOf("three"), "");
}

TEST(KeyedLinesTest, keysMayBeAskedInAnyOrderAndAgain) {
  KeyedLines lines("one 1\ntwo 2\nthree 3\n");
  for (int round = 0; round < 2; ++round) {
    EXPECT_EQ(lines.valueOf("three "), "3");
    EXPECT_EQ(lines.valueOf("one "), "1");
    EXPECT_EQ(lines.valueOf("one "), "1");
    EXPECT_EQ(lines.valueOf("two "), "2");
  }
}

TEST(KeyedLinesTest, aMissingKeyDoesNotHideOthers) {
  KeyedLines lines("one 1\ntwo 2\n");
  EXPECT_EQ(lines.valueOf("one "), "1");
  EXPECT_FALSE(lines.valueOf("zero "));
  EXPECT_EQ(lines.valueOf("two "), "2");
}

TEST(KeyedLinesTest, onlyTheBeginningOfALineIsAKey) {
  KeyedLines lines("Active(anon): 1\nInActive: 2\nActive: 3");
  EXPECT_EQ(lines.valueOf("Active:"), " 3");
  EXPECT_FALSE(lines.valueOf("active:"));
  EXPECT_FALSE(KeyedLines("one\n two").valueOf("one\n"));
  EXPECT_FALSE(KeyedLines("on").valueOf("one"));
  EXPECT_FALSE(KeyedLines("").valueOf("one"));
  EXPECT_FALSE(KeyedLines("\n\n").valueOf("one"));
}

}  // namespace
}  // namespace vorli::formats
