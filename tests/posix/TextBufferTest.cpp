#include "posix/TextBuffer.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <limits>

namespace vorli::posix {
namespace {

TEST(TextBufferTest, textsAndNumbersFollowOneAnother) {
  FixedText<100> text;
  text.add("a ").addDecimal(0).add(" ").addDecimal(1234567890).add(" 0x").addHex(0xBEEF);
  EXPECT_EQ(text.text(), "a 0 1234567890 0xbeef");
  text.clear();
  text.addDecimal(std::numeric_limits<std::uint64_t>::max());
  EXPECT_EQ(text.text(), "18446744073709551615");
}

TEST(TextBufferTest, textThatDoesNotFitIsCutOff) {
  FixedText<4> text;
  text.add("abc");
  EXPECT_FALSE(text.isFull());
  text.add("def").add("g");
  EXPECT_EQ(text.text(), "abcd");
  EXPECT_TRUE(text.isFull());
}

}  // namespace
}  // namespace vorli::posix
