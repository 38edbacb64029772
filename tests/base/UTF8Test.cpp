#include "base/UTF8.h"

namespace vorli {
namespace {

using namespace std::literals;

TEST(UTF8Test, asciiIsFoundAtEveryLengthAndPlace) {
  for (std::size_t length = 0; length < 20; ++length) {
    std::string text(length, '~');
    EXPECT_TRUE(isASCII(text));
    for (std::size_t at = 0; at < length; ++at) {
      text[at] = '\x80';
      EXPECT_FALSE(isASCII(text)) << length << ", " << at;
      text[at] = '~';
    }
  }
}

TEST(UTF8Test, wellFormedTextIsTakenAsItIs) {
  for (const auto text : {""sv, "plain"sv, "\0"sv, "Gr\xC3\xBC\xC3\x9F"sv, "\xC2\x80"sv, "\xDF\xBF"sv,
                          "\xE0\xA0\x80"sv, "\xED\x9F\xBF"sv, "\xEE\x80\x80"sv, "\xEF\xBF\xBF"sv,
                          "\xF0\x90\x80\x80"sv, "\xF4\x8F\xBF\xBF"sv, "\xEF\xBF\xBD"sv}) {
    EXPECT_TRUE(isUTF8(text));
    EXPECT_EQ(repairedUTF8(text), text);
  }
}

TEST(UTF8Test, eachIllFormedPieceBecomesOneReplacement) {
  const std::pair<std::string_view, std::string_view> cases[] = {
      {"\x80"sv, "\uFFFD"sv},
      {"a\xFFz"sv, "a\uFFFDz"sv},
      {"\xC3"sv, "\uFFFD"sv},                      // cut off
      {"\xC0\xAF"sv, "\uFFFD\uFFFD"sv},            // overlong; each byte is a piece
      {"\xC1\x80"sv, "\uFFFD\uFFFD"sv},            //
      {"\xE0\x9F\x80"sv, "\uFFFD\uFFFD\uFFFD"sv},  // overlong
      {"\xED\xA0\x80"sv, "\uFFFD\uFFFD\uFFFD"sv},  // surrogate
      {"\xE2\x82"sv, "\uFFFD"sv},                  // the start of a character is one piece
      {"\xE2\x82z"sv, "\uFFFDz"sv},                //
      {"\xF0\x9F\x98"sv, "\uFFFD"sv},              //
      {"\xF0\x8F\x80\x80"sv, "\uFFFD\uFFFD\uFFFD\uFFFD"sv},
      {"\xF4\x90\x80\x80"sv, "\uFFFD\uFFFD\uFFFD\uFFFD"sv},  // above U+10FFFF
      {"\xF5\x80"sv, "\uFFFD\uFFFD"sv},
      {"\xC3\xC3\xBC"sv, "\uFFFD\u00FC"sv},
  };
  for (const auto& [bytes, repaired] : cases) {
    EXPECT_FALSE(isUTF8(bytes)) << repaired;
    EXPECT_EQ(repairedUTF8(bytes), repaired);
  }
}

TEST(UTF8Test, charactersAreAppendedInAsManyBytesAsTheyNeed) {
  const auto appended = [](char32_t character) {
    std::string text = "x";
    appendUTF8(text, character);
    return text;
  };
  EXPECT_EQ(appended(0), "x\0"s);
  EXPECT_EQ(appended(0x7F), "x\x7F");
  EXPECT_EQ(appended(0x80), "x\xC2\x80");
  EXPECT_EQ(appended(0x7FF), "x\xDF\xBF");
  EXPECT_EQ(appended(0x800), "x\xE0\xA0\x80");
  EXPECT_EQ(appended(0xFFFF), "x\xEF\xBF\xBF");
  EXPECT_EQ(appended(0x10000), "x\xF0\x90\x80\x80");
  EXPECT_EQ(appended(0x10FFFF), "x\xF4\x8F\xBF\xBF");
  EXPECT_EQ(appended(0xD7FF), "x\xED\x9F\xBF");
  for (const char32_t character : {0xD800, 0xDFFF, 0x110000}) EXPECT_EQ(appended(character), "x\uFFFD");
}

}  // namespace
}  // namespace vorli
