#include "base/UnicodeText.h"

namespace vorli {
namespace {

TEST(UnicodeTextTest, lowersTheLettersOfSeveralScripts) {
  const std::pair<const char*, const char*> cases[] = {
      {"", ""},
      {"Google Chrome", "google chrome"},
      {"AZ@[", "az@["},
      {"ÀÖ×ØÞß", "àö×øþß"},
      {"ĀĮıĲĶŁŽŸ", "āįıĳķłžÿ"},
      {"ƠƯȘț", "ơưșț"},
      {"ΆΈΌΏΑΡΣΫ", "άέόώαρσϋ"},
      {"ЀЏАЯЁҐӀԮ", "ѐџаяёґӏԯ"},
      {"ԱՖ", "աֆ"},
      {"ẠỸẔẞ", "ạỹẕß"},
      {"Ｗ日本𝐀", "ｗ日本𝐀"},
  };
  for (const auto& [given, expected] : cases) EXPECT_EQ(lowercased(given), expected);
}

TEST(UnicodeTextTest, raisesTheLettersOfSeveralScripts) {
  const std::pair<const char*, const char*> cases[] = {
      {"", ""},     {"space", "SPACE"},   {"ä", "Ä"},       {"ω", "Ω"},
      {"жї", "ЖЇ"}, {"7↩\xFF", "7↩\xFF"}, {"日本", "日本"},
  };
  for (const auto& [given, expected] : cases) EXPECT_EQ(uppercased(given), expected);
}

TEST(UnicodeTextTest, leavesInvalidBytesAsTheyAre) {
  EXPECT_EQ(lowercased("A\xC3"), "a\xC3");
  EXPECT_EQ(lowercased("\xFF\xC3\x41\xE1\xBA"), "\xFF\xC3\x61\xE1\xBA");
  EXPECT_EQ(capitalizingFirst("\xC3z"), "\xC3z");
}

TEST(UnicodeTextTest, raisesOnlyALowercaseFirstLetter) {
  const std::pair<const char*, const char*> cases[] = {
      {"", ""},
      {"my tool", "My tool"},
      {"My Tool", "My Tool"},
      {"élan", "Élan"},
      {"ÿ", "Ÿ"},
      {"яндекс", "Яндекс"},
      {"ωmega", "Ωmega"},
      {"šport", "Šport"},
      {"7zip", "7zip"},
      {"日本", "日本"},
      {"÷", "÷"},
      {"_x", "_x"},
  };
  for (const auto& [given, expected] : cases) EXPECT_EQ(capitalizingFirst(given), expected);
}

TEST(UnicodeTextTest, capitalizesTheFirstLetterOfEachWordAndLowersTheRest) {
  const std::pair<const char*, const char*> cases[] = {
      {"", ""},
      {"cloud agent", "Cloud Agent"},
      {"LaunchAtLoginHelper", "Launchatloginhelper"},
      {"1password", "1Password"},
      {"boolean-label", "Boolean-Label"},
      {"don't stop", "Don't Stop"},
      {"a.b", "A.b"},
      {"'tis", "'Tis"},
      {"ÉLAN vital", "Élan Vital"},
      {"日本go", "日本Go"},
      {"\xFFgo", "\xFFGo"},
  };
  for (const auto& [given, expected] : cases) EXPECT_EQ(capitalized(given), expected) << given;
}

TEST(UnicodeTextTest, trimsWhiteSpaceAtBothEndsOnly) {
  EXPECT_EQ(trimmed("  My Tool\t\n"), "My Tool");
  EXPECT_EQ(trimmed("\u00A0\u3000My\u2003Tool\u2009\u0085"), "My\u2003Tool");
  EXPECT_EQ(trimmed(" \t\u2028"), "");
  EXPECT_EQ(trimmed(""), "");
  EXPECT_EQ(trimmed("\u200B"), "\u200B");  // has no width, but is not white space
  EXPECT_EQ(trimmed(" \xFF "), "\xFF");
}

}  // namespace
}  // namespace vorli
