#include "formats/KernelText.h"

#include <gtest/gtest.h>

namespace vorli::formats {
namespace {

TEST(KernelTextTest, linesAreTakenOneByOneAndTheLastMayLackItsNewline) {
  std::string_view text = "one\n\nthree";
  EXPECT_EQ(takeLine(text), "one");
  EXPECT_EQ(takeLine(text), "");
  EXPECT_EQ(takeLine(text), "three");
  EXPECT_TRUE(text.empty());
  EXPECT_EQ(takeLine(text), "");
}

TEST(KernelTextTest, anyBlanksSeparateWords) {
  std::string_view text = "  a\t\tbc \n d";
  EXPECT_EQ(takeWord(text), "a");
  EXPECT_EQ(takeWord(text), "bc");
  EXPECT_EQ(takeWord(text), "d");
  EXPECT_EQ(takeWord(text), "");
  EXPECT_EQ(takeWord(text), "");
}

TEST(KernelTextTest, aWholeNumberIsDigitsOnlyAndFits) {
  EXPECT_EQ(parseWhole("18446744073709551615"), 18446744073709551615U);
  EXPECT_FALSE(parseWhole("18446744073709551616"));
  EXPECT_FALSE(parseWhole(""));
  EXPECT_FALSE(parseWhole("-1"));
  EXPECT_FALSE(parseWhole("+1"));
  EXPECT_FALSE(parseWhole(" 1"));
  EXPECT_FALSE(parseWhole("12kB"));
  EXPECT_EQ(parseSigned("-274000"), -274000);
  EXPECT_FALSE(parseSigned("9223372036854775808"));
}

TEST(KernelTextTest, aDecimalIsTheNearestDouble) {
  EXPECT_EQ(parseDecimal("0.07"), 0.07);
  EXPECT_EQ(parseDecimal("312.5"), 312.5);
  EXPECT_EQ(parseDecimal("12"), 12.0);
  EXPECT_EQ(parseDecimal("12."), 12.0);
  EXPECT_EQ(parseDecimal("0.3333333333333333333333333333"), 0.33333333333333);
  EXPECT_EQ(parseDecimal("999999999999999.9"), 999999999999999.0);
}

TEST(KernelTextTest, otherTextsAreNotDecimals) {
  for (const char* text : {"", ".", ".5", "-0.5", "1e5", "nan", "1,5", "1.2.3", "1000000000000000.0"}) {
    EXPECT_FALSE(parseDecimal(text)) << text;
  }
}

}  // namespace
}  // namespace vorli::formats
