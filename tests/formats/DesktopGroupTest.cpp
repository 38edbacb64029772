#include "formats/DesktopGroup.h"

#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <string_view>

namespace vorli::formats {
namespace {

std::optional<std::string_view> valueOfKey(std::string_view text) {
  return valueInGroup(text, "[Group]", "key");
}

TEST(DesktopGroupTest, aValueIsReadFromItsGroupOnly) {
  constexpr auto text = "key=none\n[Other]\nkey=other\n[Group]\nkey2=x\nkey=value\n[Last]\nkey=last";
  EXPECT_EQ(valueInGroup(text, "[Group]", "key"), "value");
  EXPECT_EQ(valueInGroup(text, "[Other]", "key"), "other");
  EXPECT_EQ(valueInGroup(text, "[Last]", "key"), "last");
  EXPECT_EQ(valueInGroup(text, "[Group]", "missing"), std::nullopt);
  EXPECT_EQ(valueInGroup(text, "[Missing]", "key"), std::nullopt);
  EXPECT_EQ(valueInGroup("", "[Group]", "key"), std::nullopt);
}

TEST(DesktopGroupTest, aHeaderIsItsWholeName) {
  for (const char* other : {"[Group", "Group]", "[group]", "[Group ]", "[Group]x", "[Group][de]", "#[Group]"})
    EXPECT_EQ(valueOfKey(other + std::string("\nkey=value\n")), std::nullopt) << other;
  EXPECT_EQ(valueOfKey("[Group]\n[Group]x\nkey=value\n"), std::nullopt);
}

TEST(DesktopGroupTest, blanksAndCarriageReturnsAreNoPartsOfAValue) {
  EXPECT_EQ(valueOfKey("[Group]\r\n key =\tvalue \r\n"), "value");
  EXPECT_EQ(valueOfKey("\t[Group] \nkey=two words = one value\n"), "two words = one value");
  EXPECT_EQ(valueOfKey("[Group]\nkey=\r\n"), "");
}

TEST(DesktopGroupTest, commentsAndLinesWithoutAnEqualsSignAreSkipped) {
  EXPECT_EQ(valueOfKey("# head\n\n[Group]\n#key=comment\n # key=comment\nkey\n=x\nkey=value"), "value");
  EXPECT_EQ(valueInGroup("[Group]\n#key=comment\n", "[Group]", "#key"), std::nullopt);
  EXPECT_EQ(valueInGroup("[Group]\n\n# comment\n=x\n", "[Group]", ""), std::nullopt);
}

TEST(DesktopGroupTest, aKeyInALanguageIsAnotherKey) {
  constexpr auto text = "[Group]\nkey[de]=Wert\nkey=value\n";
  EXPECT_EQ(valueOfKey(text), "value");
  EXPECT_EQ(valueInGroup(text, "[Group]", "key[de]"), "Wert");
  EXPECT_EQ(valueOfKey("[Group]\nkey[de]=Wert\nKey=value\nkeys=values\n"), std::nullopt);
}

TEST(DesktopGroupTest, theFirstOfTwoEqualKeysCountsAlsoIfTheGroupIsRepeated) {
  EXPECT_EQ(valueOfKey("[Group]\nkey=first\nkey=second\n"), "first");
  EXPECT_EQ(valueOfKey("[Group]\nother=x\n[Other]\nkey=other\n[Group]\nkey=later\nkey=last\n"), "later");
}

TEST(DesktopGroupTest, escapesStayInTheValue) {
  EXPECT_EQ(valueOfKey("[Group]\nkey=a\\;b\\s;c\n"), "a\\;b\\s;c");
}

}  // namespace
}  // namespace vorli::formats
