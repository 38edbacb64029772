#include "formats/PropertyList.h"
#include "tests/formats/BinaryPropertyListWriter.h"

#include <gtest/gtest.h>

namespace vorli::formats {
namespace {

using Kind = PropertyList::Kind;

TEST(PropertyListTest, binaryAndXMLAreDistinguished) {
  BinaryPropertyListWriter writer;
  EXPECT_EQ(readPropertyList(writer.bytes(writer.text("binary")), 1000)->root().text(), "binary");
  EXPECT_EQ(readPropertyList("<string>XML</string>", 1000)->root().text(), "XML");
  EXPECT_FALSE(readPropertyList("{ Label = \"old style\"; }", 1000));
  EXPECT_FALSE(readPropertyList("", 1000));
}

TEST(PropertyListTest, theCallerSetsTheLargestSize) {
  constexpr std::string_view list = "<string>XML</string>";
  EXPECT_TRUE(readPropertyList(list, list.size()));
  EXPECT_EQ(readPropertyList(list, list.size() - 1).error(), "the property list is too large");
}

TEST(PropertyListTest, nothingIsConverted) {
  const auto list = readPropertyList(
      "<dict><key>integer</key><integer>1</integer><key>text</key><string>true</string>"
      "<key>boolean</key><true/><key>array</key><array/></dict>",
      1000);
  const auto root = list->root();
  EXPECT_EQ(root.find("integer")->boolean(), std::nullopt);
  EXPECT_EQ(root.find("integer")->real(), std::nullopt);
  EXPECT_EQ(root.find("integer")->uid(), std::nullopt);
  EXPECT_EQ(root.find("text")->boolean(), std::nullopt);
  EXPECT_EQ(root.find("text")->data(), std::nullopt);
  EXPECT_EQ(root.find("boolean")->integer(), std::nullopt);
  EXPECT_EQ(root.find("boolean")->count(), 0U);
  EXPECT_EQ(root.find("array")->find("integer"), std::nullopt);
  EXPECT_EQ(root.find("array")->date(), std::nullopt);
  EXPECT_EQ(root.text(), std::nullopt);
}

TEST(PropertyListTest, keysAreFoundByTheirBytes) {
  // Composed and decomposed letters are two keys.
  const auto list = readPropertyList(
      "<dict><key>\u00e9</key><integer>1</integer><key>e\u0301</key><integer>2</integer>"
      "<key>e</key><integer>3</integer><key>E</key><integer>4</integer></dict>",
      1000);
  EXPECT_EQ(list->root().find("\u00e9")->integer(), 1);
  EXPECT_EQ(list->root().find("e\u0301")->integer(), 2);
  EXPECT_EQ(list->root().find("e")->integer(), 3);
  EXPECT_EQ(list->root().find("E")->integer(), 4);
  EXPECT_FALSE(list->root().find("\u00c9"));
}

TEST(PropertyListTest, everyKeyOfALargeDictionaryIsFound) {
  std::string text = "<dict>";
  for (int i = 0; i < 1000; ++i) {
    const auto number = std::to_string(i * 7919 % 1000);
    text += "<key>key" + number + "</key><integer>" + number + "</integer>";
  }
  const auto list = readPropertyList(text + "</dict>", 100000);
  for (int i = 0; i < 1000; ++i) {
    EXPECT_EQ(list->root().find("key" + std::to_string(i))->integer(), i);
  }
  EXPECT_FALSE(list->root().find("key1000"));
}

}  // namespace
}  // namespace vorli::formats
