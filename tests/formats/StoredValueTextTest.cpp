#include "formats/StoredValueText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>

namespace vorli::formats {
namespace {

using testing::ElementsAre;
using Texts = std::vector<std::string>;

StoredValue text(std::string value) {
  return value;
}

TEST(StoredValueTextTest, whatAPersonMayEditIsWrittenPlainly) {
  EXPECT_THAT(storedTexts(true), ElementsAre("true"));
  EXPECT_THAT(storedTexts(false), ElementsAre("false"));
  EXPECT_THAT(storedTexts(std::int64_t{-60}), ElementsAre("-60"));
  EXPECT_THAT(storedTexts(text("opt+shift+C")), ElementsAre("opt+shift+C"));
  EXPECT_THAT(storedTexts(text("")), ElementsAre(""));
}

TEST(StoredValueTextTest, aRealHasAPointOrAnExponentAndItsShortestDigits) {
  const std::pair<double, std::string> reals[] = {
      {0.1, "0.1"},
      {3.0, "3.0"},
      {-0.0, "-0.0"},
      {100000.0, "100000.0"},
      {1e14, "100000000000000.0"},
      {1e15, "1e+15"},
      {0.00001, "0.00001"},
      {0.000001, "1e-06"},
      {0.1 + 0.2, "0.30000000000000004"},
      {std::numeric_limits<double>::max(), "1.7976931348623157e+308"},
      {std::numeric_limits<double>::denorm_min(), "5e-324"}};
  for (const auto& [real, written] : reals) {
    EXPECT_THAT(storedTexts(real), ElementsAre(written));
    EXPECT_EQ(parseStoredTexts({written}), StoredValue(real));
  }
}

TEST(StoredValueTextTest, whatIsNoNumberIsStoredAsAText) {
  EXPECT_EQ(parseStoredTexts(storedTexts(std::numeric_limits<double>::infinity())), text("inf"));
  EXPECT_EQ(parseStoredTexts(storedTexts(std::numeric_limits<double>::quiet_NaN())), text("nan"));
}

TEST(StoredValueTextTest, aNumberInAnotherSpellingStaysAText) {
  for (const char* spelling :
       {"060", "+60", " 60", "60 ", "-0", "0.50", ".5", "5.", "1e3", "1E+15", "0x10", "1e+999",
        "9223372036854775808", "inf", "nan", "True", "TRUE", "false ", "1.10"}) {
    EXPECT_EQ(parseStoredTexts({spelling}), text(spelling));
    EXPECT_THAT(storedTexts(text(spelling)), ElementsAre(spelling));
  }
  EXPECT_EQ(parseStoredTexts({"9223372036854775807"}), StoredValue(std::numeric_limits<std::int64_t>::max()));
  EXPECT_EQ(parseStoredTexts({"-9223372036854775808"}),
            StoredValue(std::numeric_limits<std::int64_t>::min()));
}

TEST(StoredValueTextTest, aTextThatLooksLikeSomethingElseIsMarked) {
  for (const char* misleading : {"true", "60", "0.5", "@Date 5", "@Strings", "@", "@String 60"}) {
    EXPECT_THAT(storedTexts(text(misleading)), ElementsAre(std::string("@String ") + misleading));
    EXPECT_EQ(parseStoredTexts(storedTexts(text(misleading))), text(misleading));
  }
}

TEST(StoredValueTextTest, aDateKeepsItsMicroseconds) {
  EXPECT_THAT(storedTexts(Date{1700000000.25}), ElementsAre("@Date 1700000000.250000"));
  EXPECT_EQ(parseStoredTexts({"@Date 1700000000.25"}), StoredValue(Date{1700000000.25}));
  EXPECT_EQ(parseStoredTexts(storedTexts(Date::distantPast())), StoredValue(Date::distantPast()));
}

TEST(StoredValueTextTest, aMalformedValueWithAMarkIsNone) {
  for (const char* malformed :
       {"@Date yesterday", "@Date ", "@Date inf", "@Date nan", "@Date 5 x", "@Other 5", "@"}) {
    EXPECT_EQ(parseStoredTexts({malformed}), std::nullopt) << malformed;
  }
  EXPECT_EQ(parseStoredTexts({"@Other", "a"}), std::nullopt);
}

TEST(StoredValueTextTest, aListKeepsItsTextsAsTheyAre) {
  const Texts list{"60", "", "a, b", "@Strings"};
  EXPECT_THAT(storedTexts(list), ElementsAre("@Strings", "60", "", "a, b", "@Strings"));
  EXPECT_EQ(parseStoredTexts(storedTexts(list)), StoredValue(list));
  EXPECT_THAT(storedTexts(Texts{}), ElementsAre("@Strings"));
  EXPECT_EQ(parseStoredTexts({"@Strings"}), StoredValue(Texts{}));
}

TEST(StoredValueTextTest, aListWithoutAMarkIsOneTextWithCommas) {
  EXPECT_EQ(parseStoredTexts({"a", "60", "b"}), text("a, 60, b"));
  EXPECT_EQ(parseStoredTexts({}), text(""));
}

TEST(StoredValueTextTest, aDictionaryLosesOnlyItsMalformedEntries) {
  const StoredDictionary dictionary{{"", std::string("60")}, {"@Date 5", std::int64_t{60}}, {"on", true}};
  EXPECT_EQ(parseStoredTexts(storedTexts(dictionary)), StoredValue(dictionary));
  EXPECT_THAT(storedTexts(StoredDictionary{}), ElementsAre("@Dictionary"));
  EXPECT_EQ(parseStoredTexts({"@Dictionary"}), StoredValue(StoredDictionary{}));
  EXPECT_EQ(parseStoredTexts({"@Dictionary", "bad", "@Date x", "good", "5", "left over"}),
            StoredValue(StoredDictionary{{"good", std::int64_t{5}}}));
}

}  // namespace
}  // namespace vorli::formats
