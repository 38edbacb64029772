#include "formats/XMLScalars.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <optional>
#include <string>
#include <string_view>

namespace vorli::formats {
namespace {

TEST(XMLScalarsTest, readsDecimalAndHexadecimalIntegers) {
  EXPECT_EQ(parseXMLInteger("0"), 0);
  EXPECT_EQ(parseXMLInteger(" \t\r\n-42"), -42);
  EXPECT_EQ(parseXMLInteger("+42"), 42);
  EXPECT_EQ(parseXMLInteger("0x1F"), 31);
  EXPECT_EQ(parseXMLInteger("-0X1f"), -31);
}

TEST(XMLScalarsTest, integersAboveTheSigned64BitsKeepTheirBits) {
  EXPECT_EQ(parseXMLInteger("9223372036854775807"), std::numeric_limits<std::int64_t>::max());
  EXPECT_EQ(parseXMLInteger("-9223372036854775808"), std::numeric_limits<std::int64_t>::min());
  EXPECT_EQ(parseXMLInteger("9223372036854775808"), std::numeric_limits<std::int64_t>::min());
  EXPECT_EQ(parseXMLInteger("0xFFFFFFFFFFFFFFFF"), -1);
}

TEST(XMLScalarsTest, refusesOtherIntegers) {
  for (const char* text : {"", " ", "-", "+", "0x", "-0x", "1 ", "1 2", "--1", "1.0", "1e3", "ten", "0x1G",
                           "18446744073709551616", "-9223372036854775809", "0x10000000000000000"}) {
    EXPECT_EQ(parseXMLInteger(text), std::nullopt) << text;
  }
}

TEST(XMLScalarsTest, readsDecimalReals) {
  EXPECT_EQ(parseXMLReal("1.5"), 1.5);
  EXPECT_EQ(parseXMLReal(" \n-.5"), -0.5);
  EXPECT_EQ(parseXMLReal("+2."), 2.0);
  EXPECT_EQ(parseXMLReal("25E-1"), 2.5);
}

TEST(XMLScalarsTest, readsTheWordsForInfinitiesAndNaN) {
  EXPECT_EQ(parseXMLReal("inf"), std::numeric_limits<double>::infinity());
  EXPECT_EQ(parseXMLReal("-Infinity"), -std::numeric_limits<double>::infinity());
  const auto notANumber = parseXMLReal("NaN");
  ASSERT_TRUE(notANumber);
  EXPECT_TRUE(std::isnan(*notANumber));
}

TEST(XMLScalarsTest, refusesOtherReals) {
  for (const char* text :
       {"", " ", "-", ".", "e3", "1e", "1e+", "1,5", "1.5 ", "1.2.3", "0x1p3", "infinite"}) {
    EXPECT_EQ(parseXMLReal(text), std::nullopt) << text;
  }
}

TEST(XMLScalarsTest, readsDatesInUTC) {
  EXPECT_EQ(parseXMLDate("1970-01-01T00:00:00Z"), Date{0.0});
  EXPECT_EQ(parseXMLDate("2024-02-29T23:59:59Z"), Date{1709251199.0});
}

TEST(XMLScalarsTest, refusesOtherDates) {
  for (const char* text :
       {"", "2024-02-29", "2024-02-29T23:59:59", " 2024-02-29T23:59:59Z", "2024-02-29 23:59:59Z",
        "2024-02-29T23:59:59+00:00", "2023-02-29T00:00:00Z", "2024-13-01T00:00:00Z", "2024-01-32T00:00:00Z",
        "2024-01-01T24:00:00Z", "2024-01-01T00:60:00Z", "2024-01-01T00:00:60Z", "20240-01-01T00:00:0Z"}) {
    EXPECT_EQ(parseXMLDate(text), std::nullopt) << text;
  }
}

TEST(XMLScalarsTest, decodesBase64AndSkipsOtherCharacters) {
  EXPECT_EQ(decodeXMLData(""), "");
  EXPECT_EQ(decodeXMLData("Vm9ybGk="), "Vorli");
  EXPECT_EQ(decodeXMLData("Vg=="), "V");
  EXPECT_EQ(decodeXMLData("\n\tVm9y\n\tbGk=\n"), "Vorli");
  EXPECT_EQ(decodeXMLData("AP8="), std::string("\0\xFF", 2));
}

TEST(XMLScalarsTest, dropsAnIncompleteBase64Group) {
  EXPECT_EQ(decodeXMLData("V"), "");
  EXPECT_EQ(decodeXMLData("Vm9"), "");
  EXPECT_EQ(decodeXMLData("Vm9yVm9"), "Vor");
}

TEST(XMLScalarsTest, takesReferencesOffTheFront) {
  std::string_view rest = "&lt;&gt;&amp;&quot;&apos;&#65;&#x20AC;&#x10FFFF;end";
  std::string text;
  while (rest.starts_with('&')) ASSERT_TRUE(takeXMLReference(rest, text)) << rest;
  EXPECT_EQ(text, "<>&\"'A\u20ac\U0010FFFF");
  EXPECT_EQ(rest, "end");
}

TEST(XMLScalarsTest, refusesOtherReferences) {
  for (const std::string_view reference :
       {"", "&", "lt;", "&lt", "&LT;", "&nbsp;", "&#;", "&#x;", "&#65", "&#x41", "&#-65;", "&#6 5;", "&#xG;",
        "&#X41;", "&#x110000;", "&#99999999;", "&#4294967361;", "&#000000065;"}) {
    auto rest = reference;
    std::string text;
    EXPECT_FALSE(takeXMLReference(rest, text)) << reference;
  }
}

TEST(XMLScalarsTest, onlySpacesTabsAndLineEndsAreBlanks) {
  for (const char c : {' ', '\t', '\n', '\r'}) EXPECT_TRUE(isXMLBlank(c)) << static_cast<int>(c);
  for (const char c : {'\0', '\v', '\f', 'a', '\xA0'}) EXPECT_FALSE(isXMLBlank(c)) << static_cast<int>(c);
}

}  // namespace
}  // namespace vorli::formats
