#include "formats/XMLEncoding.h"

#include <gtest/gtest.h>

namespace vorli::formats {
namespace {

using namespace std::string_literals;

std::optional<std::string> decode(std::string_view bytes) {
  auto text = decodeXML(bytes);
  return text ? std::optional(*text) : std::nullopt;
}

TEST(XMLEncodingTest, withoutMarkAndDeclarationItIsUTF8) {
  EXPECT_EQ(decode("<a>\u20ac</a>"), "<a>\u20ac</a>");
  EXPECT_EQ(decode(""), "");
  EXPECT_EQ(decode("<a>\xFF</a>"), std::nullopt);
  EXPECT_EQ(decode("<a>\xC0\x80</a>"), std::nullopt);
}

TEST(XMLEncodingTest, marksTellTheEncodingAndAreTakenOff) {
  EXPECT_EQ(decode("\xEF\xBB\xBF<a/>"), "<a/>");
  EXPECT_EQ(decode("\xFF\xFE\xAC\x20"), "\u20ac");
  EXPECT_EQ(decode("\xFE\xFF\x20\xAC"), "\u20ac");
  EXPECT_EQ(decode("\xFF\xFE\0\0\xAC\x20\0\0"s), "\u20ac");
  EXPECT_EQ(decode("\0\0\xFE\xFF\0\1\xF6\0"s), "\U0001F600");
}

TEST(XMLEncodingTest, utf16NeedsWholePairs) {
  EXPECT_EQ(decode("\xFE\xFF\xD8\x3D\xDE\x00"s), "\U0001F600");
  for (const auto& bytes :
       {"\xFE\xFF\xD8\x3D"s, "\xFE\xFF\xD8\x3D\x00\x41"s, "\xFE\xFF\xDE\x00"s, "\xFE\xFF\x00"s}) {
    EXPECT_EQ(decode(bytes), std::nullopt);
  }
}

TEST(XMLEncodingTest, halvesOfPairsAreNoCharacters) {
  EXPECT_EQ(decode("\xFE\xFF\xD7\xFF\xE0\x00"s), "\uD7FF\uE000");
  EXPECT_EQ(decode("\xFE\xFF\xD8\x00\xDC\x00\xDB\xFF\xDF\xFF"s), "\U00010000\U0010FFFF");
  EXPECT_EQ(decode("\0\0\xFE\xFF\0\0\xD7\xFF\0\0\xE0\0\0\x10\xFF\xFF"s), "\uD7FF\uE000\U0010FFFF");
  for (const auto& bytes : {"\xFE\xFF\xDC\x00"s, "\xFE\xFF\xDF\xFF"s, "\xFE\xFF\xD8\x00\xDB\xFF"s,
                            "\xFE\xFF\xD8\x00\xE0\x00"s, "\0\0\xFE\xFF\0\0\xDF\xFF"s}) {
    EXPECT_EQ(decode(bytes), std::nullopt);
  }
}

TEST(XMLEncodingTest, utf32NeedsCharacters) {
  for (const auto& bytes : {"\0\0\xFE\xFF\0\x11\0\0"s, "\0\0\xFE\xFF\0\0\xD8\0"s, "\0\0\xFE\xFF\0\0\0"s}) {
    EXPECT_EQ(decode(bytes), std::nullopt);
  }
}

TEST(XMLEncodingTest, theDeclarationNamesTheEncoding) {
  const auto declared = [](const std::string& name, const std::string& text) {
    return decode("<?xml version=\"1.0\" encoding=\"" + name + "\"?>" + text).has_value();
  };
  EXPECT_TRUE(declared("utf-8", "\u20ac"));
  EXPECT_TRUE(declared("US-ASCII", "a"));
  EXPECT_FALSE(declared("US-ASCII", "\u20ac"));
  EXPECT_TRUE(declared("iso-8859-1", "\xFF"));
  EXPECT_FALSE(declared("UTF-16", "a"));
  EXPECT_FALSE(declared("x-unknown", "a"));
  EXPECT_EQ(decode("<?xml encoding='ISO-8859-1'?>\xE9"), "<?xml encoding='ISO-8859-1'?>\u00e9");
}

TEST(XMLEncodingTest, aBrokenDeclarationDeclaresNothing) {
  for (const std::string_view text :
       {"<?xml encoding=", "<?xml encoding=?>", "<?xml encoding=latin1?>",
        "<?xml ?><a encoding='ISO-8859-1'/>", " <?xml encoding='x-unknown'?>"}) {
    EXPECT_EQ(decode(text), text);
  }
}

}  // namespace
}  // namespace vorli::formats
