#include "base/PercentEncoding.h"

namespace vorli {
namespace {

TEST(PercentEncodingTest, lettersDigitsAndAllowedPunctuationAreKept) {
  EXPECT_EQ(percentEncoded("azAZ09-_.", "-_."), "azAZ09-_.");
  EXPECT_EQ(percentEncoded("a-b", ""), "a%2Db");
}

TEST(PercentEncodingTest, otherBytesBecomeHexDigits) {
  EXPECT_EQ(percentEncoded("Visual Studio\t/\x7F", hostPunctuation), "Visual%20Studio%09%2F%7F");
  EXPECT_EQ(percentEncoded("Caf\xC3\xA9", hostPunctuation), "Caf%C3%A9");
  EXPECT_EQ(percentEncoded(std::string_view("\0", 1), hostPunctuation), "%00");
}

TEST(PercentEncodingTest, aHostKeepsItsDelimitersButNotThoseOfTheLink) {
  EXPECT_EQ(percentEncoded("!$&'()*+,-.:;=[]_~", hostPunctuation), "!$&'()*+,-.:;=[]_~");
  EXPECT_EQ(percentEncoded("\"#%/<>?@\\^`{|}", hostPunctuation),
            "%22%23%25%2F%3C%3E%3F%40%5C%5E%60%7B%7C%7D");
}

}  // namespace
}  // namespace vorli
