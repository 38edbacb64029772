#include "formats/XMLPropertyList.h"

#include <chrono>
#include <cmath>
#include <gtest/gtest.h>

namespace vorli::formats {
namespace {

using Kind = PropertyList::Kind;
using namespace std::string_literals;

std::expected<PropertyList, std::string> readXML(std::string_view text) {
  return readXMLPropertyList(text);
}

bool isReadAsXML(std::string_view text) {
  return readXML(text).has_value();
}

std::optional<std::string> textOf(const std::string& element) {
  const auto list = readXML(element);
  if (!list) return std::nullopt;
  const auto text = list->root().text();
  return text ? std::optional(std::string(*text)) : std::nullopt;
}

std::optional<std::int64_t> integerOf(const std::string& content) {
  const auto list = readXML("<integer>" + content + "</integer>");
  return list ? list->root().integer() : std::nullopt;
}

std::optional<double> realOf(const std::string& content) {
  const auto list = readXML("<real>" + content + "</real>");
  return list ? list->root().real() : std::nullopt;
}

std::optional<std::string> dataOf(const std::string& content) {
  const auto list = readXML("<data>" + content + "</data>");
  return list ? std::optional(std::string(*list->root().data())) : std::nullopt;
}

constexpr std::string_view agentList = R"(<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" "http://www.apple.com/DTDs/PropertyList-1.0.dtd">
<plist version="1.0">
<dict>
	<key>Label</key>
	<string>com.example.agent</string>
	<key>ProgramArguments</key>
	<array>
		<string>/Applications/Example.app/Contents/MacOS/agent</string>
		<string>--background</string>
	</array>
	<key>RunAtLoad</key>
	<true/>
	<key>StartInterval</key>
	<integer>3600</integer>
</dict>
</plist>
)";

TEST(XMLPropertyListTest, aLaunchPropertyListIsRead) {
  const auto list = readXML(agentList);
  ASSERT_TRUE(list);
  const auto root = list->root();
  EXPECT_EQ(root.count(), 4U);
  EXPECT_EQ(root.find("Label")->text(), "com.example.agent");
  EXPECT_EQ(root.find("ProgramArguments")->count(), 2U);
  EXPECT_EQ(root.find("ProgramArguments")->element(1).text(), "--background");
  EXPECT_EQ(root.find("RunAtLoad")->boolean(), true);
  EXPECT_EQ(root.find("StartInterval")->integer(), 3600);
  EXPECT_FALSE(root.find("StartInterval")->boolean());
}

TEST(XMLPropertyListTest, declarationsAndThePlistElementMayBeMissing) {
  EXPECT_TRUE(isReadAsXML("<plist><dict/></plist>"));
  EXPECT_TRUE(isReadAsXML("<dict></dict>"));
  EXPECT_EQ(textOf("<string>a</string>"), "a");
  EXPECT_TRUE(isReadAsXML("\n \t\r<?xml version=\"1.0\"?><dict/>"));
  EXPECT_EQ(readXML("<true/>")->root().boolean(), true);
}

TEST(XMLPropertyListTest, everythingAfterTheRootIsIgnored) {
  EXPECT_TRUE(isReadAsXML("<dict/> and more <"));
  EXPECT_TRUE(isReadAsXML("<plist><dict/></plist></plist><!--"));
}

TEST(XMLPropertyListTest, commentsAndInstructionsMayAppearBetweenElements) {
  EXPECT_TRUE(
      isReadAsXML("<!-- a -- b --><plist><!-- <dict> --><?go?><dict><!----><key>a</key><!-- --><true/></dict>"
                  "<!-- --></plist>"));
  EXPECT_FALSE(isReadAsXML("<!-- <dict/>"));
  EXPECT_FALSE(isReadAsXML("<!--><dict/>"));
  EXPECT_FALSE(isReadAsXML("<? <dict/>"));
  EXPECT_FALSE(isReadAsXML("<string>a<!-- b --></string>"));
  EXPECT_FALSE(isReadAsXML("<string>a<?b?></string>"));
  EXPECT_FALSE(isReadAsXML("<integer>1<!-- --></integer>"));
}

TEST(XMLPropertyListTest, attributesAreIgnored) {
  EXPECT_EQ(textOf("<string a=\"b\" c>d</string >"), "d");
  EXPECT_TRUE(isReadAsXML("<plist version=\"9\"><dict x='y'/></plist>"));
}

TEST(XMLPropertyListTest, booleansAreWrittenInThreeWays) {
  for (const std::string_view text : {"<true/>", "<true />", "<true></true>", "<true></true\n>"}) {
    EXPECT_EQ(readXML(text)->root().boolean(), true) << text;
  }
  EXPECT_EQ(readXML("<false/>")->root().boolean(), false);
  for (const std::string_view text : {"<true>", "<true>1</true>", "<true></false>", "<TRUE/>", "<true/ >"}) {
    EXPECT_FALSE(isReadAsXML(text)) << text;
  }
}

TEST(XMLPropertyListTest, emptyTextsAndContainersAreFine) {
  EXPECT_EQ(textOf("<string/>"), "");
  EXPECT_EQ(textOf("<string></string>"), "");
  EXPECT_EQ(readXML("<array/>")->root().kind(), Kind::array);
  EXPECT_EQ(readXML("<array></array>")->root().count(), 0U);
  EXPECT_EQ(readXML("<dict><key/><true/></dict>")->root().find("")->boolean(), true);
  EXPECT_EQ(dataOf(""), "");
}

TEST(XMLPropertyListTest, otherElementsNeedTheirContent) {
  for (const std::string_view text :
       {"<data/>", "<integer/>", "<real/>", "<date/>", "<plist/>", "<integer></integer>", "<real></real>",
        "<date></date>", "<plist></plist>", "<plist> <!-- --> </plist>"}) {
    EXPECT_FALSE(isReadAsXML(text)) << text;
  }
}

TEST(XMLPropertyListTest, textsKeepEverythingBetweenTheirTags) {
  EXPECT_EQ(textOf("<string> a\r\nb\t</string>"), " a\r\nb\t");
  EXPECT_EQ(textOf("<string>a<![CDATA[<&]]]>b<![CDATA[]]></string>"), "a<&]b");
  EXPECT_EQ(textOf("<string>\0a\0</string>"s), "\0a\0"s);
  EXPECT_EQ(textOf("<string>B\u00fccher \U0001F600</string>"), "B\u00fccher \U0001F600");
  EXPECT_FALSE(isReadAsXML("<string>a<![CDATA[b</string>"));
  EXPECT_FALSE(isReadAsXML("<string>a"));
  EXPECT_FALSE(isReadAsXML("<string>a<b/></string>"));
}

TEST(XMLPropertyListTest, referencesStandForCharacters) {
  EXPECT_EQ(textOf("<string>&lt;&gt;&amp;&quot;&apos;&amp;lt;</string>"), "<>&\"'&lt;");
  EXPECT_EQ(textOf("<string>&#65;&#x42;&#x20AC;&#x0001F600;&#00000067;</string>"), "AB\u20ac\U0001F600C");
  EXPECT_EQ(textOf("<string>&#0;</string>"), "\0"s);
  EXPECT_EQ(textOf("<string>&#x10FFFF;&#1114111;</string>"), "\U0010FFFF\U0010FFFF");
  EXPECT_EQ(textOf("<string>&#xD800;</string>"), "\uFFFD");
  for (const std::string_view text : {"a & b", "&nbsp;", "&", "&;", "&#;", "&#x;", "&#65", "&#65 ;", "&#-1;",
                                      "&#x1G;", "&#000000065;", "&#x110000;", "&#99999999;", "&LT;", "&lt"}) {
    EXPECT_FALSE(isReadAsXML("<string>" + std::string(text) + "</string>")) << text;
  }
}

TEST(XMLPropertyListTest, entitiesOfTheFileItselfAreRefused) {
  EXPECT_FALSE(
      isReadAsXML("<!DOCTYPE plist [<!ENTITY a \"aaaa\"><!ENTITY b \"&a;&a;\">]><string>&b;</string>"));
  EXPECT_FALSE(isReadAsXML("<!DOCTYPE plist"));
  EXPECT_FALSE(isReadAsXML("<!ENTITY a \"b\"><string>a</string>"));
  EXPECT_FALSE(isReadAsXML("<plist><!DOCTYPE plist><dict/></plist>"));
}

TEST(XMLPropertyListTest, integersAreDecimalOrHexadecimal) {
  EXPECT_EQ(integerOf("0"), 0);
  EXPECT_EQ(integerOf(" \n42"), 42);
  EXPECT_EQ(integerOf("+42"), 42);
  EXPECT_EQ(integerOf("-42"), -42);
  EXPECT_EQ(integerOf("0x1F"), 31);
  EXPECT_EQ(integerOf("-0X1f"), -31);
  EXPECT_EQ(integerOf("9223372036854775807"), INT64_MAX);
  EXPECT_EQ(integerOf("-9223372036854775808"), INT64_MIN);
  EXPECT_EQ(integerOf("18446744073709551615"), -1);
  for (const std::string_view text : {"42 ", "4 2", "", " ", "-", "0x", "--1", "+-1", "1.0", "a", "1a",
                                      "18446744073709551616", "-9223372036854775809"}) {
    EXPECT_FALSE(integerOf(std::string(text))) << text;
  }
}

TEST(XMLPropertyListTest, realsAreDecimalOrWords) {
  EXPECT_EQ(realOf("1.5"), 1.5);
  EXPECT_EQ(realOf("-.5"), -0.5);
  EXPECT_EQ(realOf("2."), 2.0);
  EXPECT_EQ(realOf(" 1e3"), 1000.0);
  EXPECT_EQ(realOf("25E-1"), 2.5);
  EXPECT_EQ(realOf("-Infinity"), -std::numeric_limits<double>::infinity());
  EXPECT_EQ(realOf("+inf"), std::numeric_limits<double>::infinity());
  EXPECT_TRUE(std::isnan(*realOf("nan")));
  EXPECT_GT(realOf("1e999"), 1e308);
  for (const std::string_view text : {"", "1,5", "1.5 ", "e3", "1e", "0x1p3", ".", "infinite", "1.2.3"}) {
    EXPECT_FALSE(realOf(std::string(text))) << text;
  }
}

TEST(XMLPropertyListTest, datesHaveOneForm) {
  const auto dateOf = [](const std::string& content) {
    const auto list = readXML("<date>" + content + "</date>");
    return list ? list->root().date() : std::nullopt;
  };
  EXPECT_EQ(dateOf("1970-01-01T00:00:00Z"), Date{0.0});
  EXPECT_EQ(dateOf("2001-01-01T00:00:00Z"), Date{978307200.0});
  EXPECT_EQ(dateOf("2024-02-29T23:59:59Z"), Date{1709251199.0});
  EXPECT_EQ(dateOf("0001-01-01T00:00:00Z"), Date::distantPast());
  for (const std::string_view text :
       {"2024-02-29", "2024-02-29T23:59:59", "2024-02-29T23:59:59+00:00", "2024-02-29 23:59:59Z",
        "2023-02-29T00:00:00Z", "2024-13-01T00:00:00Z", "2024-00-01T00:00:00Z", "2024-01-01T24:00:00Z",
        "2024-01-01T00:60:00Z", "2024-01-01T00:00:60Z", " 2024-01-01T00:00:00Z", "2024-01-01T00:00:0aZ"}) {
    EXPECT_FALSE(dateOf(std::string(text))) << text;
  }
}

TEST(XMLPropertyListTest, dataIsBase64WithJunkInIt) {
  EXPECT_EQ(dataOf("Vm9ybGk="), "Vorli");
  EXPECT_EQ(dataOf("\n\tVm9y\n\tbGk=\n"), "Vorli");
  EXPECT_EQ(dataOf("V-m*9.y"), "Vor");
  EXPECT_EQ(dataOf("VmE="), "Va");
  EXPECT_EQ(dataOf("Vg=="), "V");
  EXPECT_EQ(dataOf("Vm9yVm9"), "Vor");
  EXPECT_EQ(dataOf("AP8="), "\0\xFF"s);
  EXPECT_FALSE(isReadAsXML("<data>Vm9y"));
  EXPECT_FALSE(isReadAsXML("<data>Vm9y<x/></data>"));
}

TEST(XMLPropertyListTest, theLastOfEqualKeysCounts) {
  const auto list = readXML(
      "<dict><key>a</key><integer>1</integer><key>b</key><true/><key>a</key><integer>2</integer>"
      "</dict>");
  EXPECT_EQ(list->root().find("a")->integer(), 2);
  EXPECT_EQ(list->root().count(), 2U);
}

TEST(XMLPropertyListTest, keysAndValuesAlternate) {
  for (const std::string_view text :
       {"<dict><key>a</key></dict>", "<dict><true/></dict>", "<dict><string>a</string><true/></dict>",
        "<dict><key>a</key><true/><true/></dict>", "<dict><array/><true/></dict>"}) {
    EXPECT_FALSE(isReadAsXML(text)) << text;
  }
}

TEST(XMLPropertyListTest, aLoneIdentifierKeyMakesAnIdentifier) {
  const auto kindOf = [](const std::string& entries) {
    return readXML("<dict>" + entries + "</dict>")->root().kind();
  };
  const auto list = readXML("<dict><key>CF$UID</key><integer>7</integer></dict>");
  EXPECT_EQ(list->root().uid(), 7U);
  EXPECT_EQ(kindOf("<key>CF$UID</key><integer>4294967295</integer>"), Kind::uid);
  EXPECT_EQ(kindOf("<key>CF$UID</key><integer>4294967296</integer>"), Kind::dictionary);
  EXPECT_EQ(kindOf("<key>CF$UID</key><integer>-1</integer>"), Kind::dictionary);
  EXPECT_EQ(kindOf("<key>CF$UID</key><string>7</string>"), Kind::dictionary);
  EXPECT_EQ(kindOf("<key>CF$UID</key><integer>7</integer><key>a</key><true/>"), Kind::dictionary);
  EXPECT_EQ(kindOf("<key>a</key><dict><key>CF$UID</key><integer>7</integer></dict>"), Kind::dictionary);
}

TEST(XMLPropertyListTest, malformedTextsAreRefused) {
  for (const std::string_view text : {"",
                                      " ",
                                      "text",
                                      "<dict>text</dict>",
                                      "<array>1</array>",
                                      "<foo/>",
                                      "<foo></foo>",
                                      "<Dict/>",
                                      "<STRING>a</STRING>",
                                      "<plist><dict/><dict/></plist>",
                                      "<plist><plist><dict/></plist></plist>",
                                      "<dict></array>",
                                      "<array></dict>",
                                      "<dict>",
                                      "<plist><dict/>",
                                      "<plist><dict/></dict>",
                                      "<string>a</key>",
                                      "</dict>",
                                      "<",
                                      "<>",
                                      "<dict",
                                      "<dict/",
                                      "<string>a</string",
                                      "<array><plist><dict/></plist></array>"}) {
    EXPECT_FALSE(isReadAsXML(text)) << text;
  }
}

TEST(XMLPropertyListTest, everyTextThatIsCutShortIsRefused) {
  const auto end = agentList.find("</plist>") + 8;
  for (std::size_t length = 0; length < end; ++length) {
    EXPECT_FALSE(isReadAsXML(agentList.substr(0, length))) << length;
  }
  EXPECT_TRUE(isReadAsXML(agentList.substr(0, end)));
}

std::string nestedXML(std::size_t depth) {
  std::string text;
  for (std::size_t i = 0; i < depth; ++i) text += "<array>";
  for (std::size_t i = 0; i < depth; ++i) text += "</array>";
  return text;
}

TEST(XMLPropertyListTest, nestingEndsAtFiveHundredAndTwelve) {
  EXPECT_TRUE(isReadAsXML(nestedXML(512)));
  EXPECT_FALSE(isReadAsXML(nestedXML(513)));
  EXPECT_FALSE(isReadAsXML(nestedXML(500000)));
}

TEST(XMLPropertyListTest, otherEncodingsAreReadByMarkOrDeclaration) {
  EXPECT_EQ(textOf("\xEF\xBB\xBF<string>\u20ac</string>"), "\u20ac");
  EXPECT_EQ(textOf("\xFF\xFE<\0a\0r\0r\0a\0y\0/\0>\0"s), std::nullopt);
  EXPECT_TRUE(isReadAsXML("\xFF\xFE<\0a\0r\0r\0a\0y\0/\0>\0"s));
  EXPECT_TRUE(isReadAsXML("\xFE\xFF\0<\0a\0r\0r\0a\0y\0/\0>"s));
  EXPECT_EQ(textOf("<?xml version='1.0' encoding='ISO-8859-1'?><string>\xFC</string>"), "\u00fc");
  EXPECT_FALSE(isReadAsXML("<string>\xFC</string>"));
  EXPECT_FALSE(isReadAsXML("<?xml encoding=\"UTF-8\"?><string>\xFC</string>"));
}

}  // namespace
}  // namespace vorli::formats
