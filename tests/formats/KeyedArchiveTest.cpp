#include "formats/KeyedArchive.h"
#include "tests/formats/KeyedArchiveWriter.h"
#include "tests/formats/SampleFiles.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>

namespace vorli::formats {
namespace {

using ArchiveWriter = KeyedArchiveWriter;
using Reference = ArchiveWriter::Reference;
using Object = KeyedArchive::Object;
using testing::ElementsAre;
using namespace std::string_literals;

std::expected<KeyedArchive, std::string> open(std::string_view bytes) {
  auto list = readPropertyList(bytes, 16 << 20);
  if (!list) return std::unexpected(list.error());
  return KeyedArchive::open(*std::move(list), {"Item", "Known"});
}

std::vector<std::string> textsOf(const std::optional<std::vector<Object>>& elements) {
  std::vector<std::string> texts;
  for (const auto& element : elements.value_or(std::vector<Object>())) {
    texts.emplace_back(element.text().value_or("(no text)"));
  }
  return texts;
}

TEST(KeyedArchiveTest, textsAndDataArePlainValuesOrObjects) {
  ArchiveWriter writer;
  const auto mutableString = writer.classNamed("NSMutableString", {"NSString"});
  const auto mutableData = writer.classNamed("NSMutableData", {"NSData"});
  const auto item = writer.classNamed("Item");
  const auto fields = ArchiveWriter::Fields{
      {"text", writer.refer(writer.text("plain"))},
      {"data", writer.refer(writer.data("\0\1"s))},
      {"mutableText",
       writer.refer(writer.object(mutableString, {{"NS.string", writer.inlined().text("longer")}}))},
      {"mutableData", writer.refer(writer.object(mutableData, {{"NS.data", writer.inlined().data("\2")}}))}};
  const auto archive = open(writer.bytes(writer.object(item, fields)));
  const auto root = archive->root();
  EXPECT_EQ(root->className(), "Item");
  EXPECT_EQ(root->object("text")->text(), "plain");
  EXPECT_EQ(root->object("text")->className(), "");
  EXPECT_EQ(root->object("text")->data(), std::nullopt);
  EXPECT_EQ(root->object("data")->data(), "\0\1"s);
  EXPECT_EQ(root->object("mutableText")->text(), "longer");
  EXPECT_EQ(root->object("mutableText")->data(), std::nullopt);
  EXPECT_EQ(root->object("mutableData")->data(), "\2");
  EXPECT_EQ(root->text(), std::nullopt);
}

TEST(KeyedArchiveTest, nilMissingAndMisplacedFieldsAreEmpty) {
  ArchiveWriter writer;
  const auto item = writer.classNamed("Item");
  const auto archive = open(writer.bytes(writer.object(item, {{"nil", writer.refer(ArchiveWriter::noObject)},
                                                              {"beyond", writer.refer(1000)},
                                                              {"inline", writer.inlined().text("inline")},
                                                              {"number", writer.inlined().byte(1)}})));
  const auto root = archive->root();
  for (const std::string_view key : {"nil", "beyond", "inline", "number", "missing", ""}) {
    EXPECT_FALSE(root->object(key)) << key;
  }
}

TEST(KeyedArchiveTest, integersAreReadFromEveryNumber) {
  ArchiveWriter writer;
  auto& list = writer.inlined();
  const ArchiveWriter::Fields fields{
      {"two", list.byte(2)},
      {"negative", list.integer(-3)},
      {"large", list.integer(1LL << 40)},
      {"true", list.boolean(true)},
      {"false", list.boolean(false)},
      {"real", list.add("\x23" + bigEndian(0xC007'0000'0000'0000, 8))},    // -2.875
      {"huge", list.add("\x23" + bigEndian(0x7FE0'0000'0000'0000, 8))},    // 2^1023
      {"lowest", list.add("\x23" + bigEndian(0xFFF0'0000'0000'0000, 8))},  // -infinity
      {"nan", list.add("\x23" + bigEndian(0x7FF8'0000'0000'0000, 8))},
      {"text", list.text("7")},
      {"data", list.data("7")},
      {"reference", writer.refer(writer.add(list.byte(7)))}};
  const auto archive = open(writer.bytes(writer.object(writer.classNamed("Item"), fields)));
  const auto root = archive->root();
  EXPECT_EQ(root->integer("two"), 2);
  EXPECT_EQ(root->integer("negative"), -3);
  EXPECT_EQ(root->integer("large"), 1099511627776);
  EXPECT_EQ(root->integer("true"), 1);
  EXPECT_EQ(root->integer("false"), 0);
  EXPECT_EQ(root->integer("real"), -2);
  EXPECT_EQ(root->integer("huge"), std::numeric_limits<std::int64_t>::max());
  EXPECT_EQ(root->integer("lowest"), std::numeric_limits<std::int64_t>::min());
  for (const std::string_view key : {"nan", "text", "data", "reference", "missing"}) {
    EXPECT_EQ(root->integer(key), 0) << key;
  }
}

TEST(KeyedArchiveTest, anUnknownClassEmptiesOnlyWhatHoldsIt) {
  ArchiveWriter writer;
  const auto item = writer.classNamed("Item");
  // The names of the classes above it do not count.
  const auto unknown = writer.classNamed("Newer", {"Known", "Item"});
  const auto child = writer.object(unknown, {{"a", writer.inlined().byte(1)}});
  const auto archive = open(writer.bytes(writer.object(
      item, {{"child", writer.refer(child)}, {"other", writer.refer(writer.text("still there"))}})));
  EXPECT_EQ(archive->root()->object("child")->className(), "");
  EXPECT_EQ(archive->root()->object("other")->text(), "still there");
}

TEST(KeyedArchiveTest, aHintNamesTheClassOnlyWhenItsOwnIsUnknown) {
  ArchiveWriter writer;
  const auto known = writer.object(writer.classNamed("Known", {}, {"Item"}), {});
  const auto hinted = writer.object(writer.classNamed("Newer", {}, {"Newest", "Known", "Item"}), {});
  const auto collection = writer.classNamed("NSSwiftArray", {}, {"NSArray"});
  const auto root = writer.object(writer.classNamed("Item"),
                                  {{"known", writer.refer(known)},
                                   {"hinted", writer.refer(hinted)},
                                   {"array", writer.refer(writer.collection(collection, {known}))}});
  const auto archive = open(writer.bytes(root));
  EXPECT_EQ(archive->root()->object("known")->className(), "Known");
  EXPECT_EQ(archive->root()->object("hinted")->className(), "Known");
  EXPECT_EQ(archive->root()->object("array")->arrayElements()->size(), 1U);
}

TEST(KeyedArchiveTest, aBrokenClassCountsAsUnknown) {
  ArchiveWriter writer;
  auto& list = writer.inlined();
  const auto withClass = [&](ArchiveWriter::Number value) {
    return writer.refer(writer.add(list.keyed({{"$class", value}})));
  };
  const ArchiveWriter::Fields fields{{"none", writer.refer(writer.add(list.keyed({})))},
                                     {"text", withClass(list.text("Item"))},
                                     {"beyond", withClass(list.uid(9999))},
                                     {"nil", withClass(list.uid(0))},
                                     {"nameless", withClass(writer.refer(writer.add(list.keyed({}))))},
                                     {"itself", withClass(list.uid(writer.next()))}};
  const auto archive = open(writer.bytes(writer.object(writer.classNamed("Item"), fields)));
  for (const auto& [key, number] : fields) {
    const auto object = archive->root()->object(key);
    ASSERT_TRUE(object) << key;
    EXPECT_EQ(object->className(), "") << key;
    EXPECT_FALSE(object->arrayElements()) << key;
  }
}

TEST(KeyedArchiveTest, anArrayKeepsWhatASetHasOnce) {
  ArchiveWriter writer;
  const auto a = writer.text("a"), b = writer.text("b");
  const std::vector<Reference> elements{b, a, b, ArchiveWriter::noObject, 1000};
  const auto array = writer.collection(writer.classNamed("NSMutableArray"), elements);
  const auto set = writer.collection(writer.classNamed("NSSet"), elements);
  const auto archive = open(writer.bytes(writer.object(
      writer.classNamed("Item"), {{"array", writer.refer(array)}, {"set", writer.refer(set)}})));
  const auto root = archive->root();
  EXPECT_THAT(textsOf(root->object("array")->arrayElements()), ElementsAre("b", "a", "b"));
  EXPECT_THAT(textsOf(root->object("set")->setElements()), ElementsAre("a", "b"));
  EXPECT_FALSE(root->object("array")->setElements());
  EXPECT_FALSE(root->object("set")->arrayElements());
}

TEST(KeyedArchiveTest, otherCollectionsAreNeitherArrayNorSet) {
  ArchiveWriter writer;
  const auto element = writer.text("a");
  const auto ordered = writer.collection(writer.classNamed("NSOrderedSet"), {element});
  // Its elements have no key of their own.
  const auto hashTable = writer.object(writer.classNamed("NSHashTable"),
                                       {{"$0", writer.inlined().byte(1)}, {"$1", writer.refer(element)}});
  const auto plain = writer.add(writer.references({element}));
  const auto mismade =
      writer.object(writer.classNamed("NSArray"), {{"NS.objects", writer.inlined().text("a")}});
  const ArchiveWriter::Fields fields{{"ordered", writer.refer(ordered)},
                                     {"hashTable", writer.refer(hashTable)},
                                     {"plain", writer.refer(plain)},
                                     {"mismade", writer.refer(mismade)}};
  const auto archive = open(writer.bytes(writer.object(writer.classNamed("Item"), fields)));
  for (const auto& [key, number] : fields) {
    EXPECT_FALSE(archive->root()->object(key)->arrayElements()) << key;
    EXPECT_FALSE(archive->root()->object(key)->setElements()) << key;
  }
}

TEST(KeyedArchiveTest, aDictionaryOfTextKeysGivesItsEntries) {
  ArchiveWriter writer;
  const auto dictionary = writer.classNamed("NSDictionary"), string = writer.classNamed("NSMutableString");
  const auto key = writer.object(string, {{"NS.string", writer.inlined().text("version")}});
  const auto root = writer.dictionary(dictionary, {{writer.text("name"), writer.text("first")},
                                                   {key, writer.add(writer.inlined().byte(2))},
                                                   {writer.text("name"), writer.text("second")},
                                                   {writer.text("nil"), ArchiveWriter::noObject}});
  const auto archive = open(writer.bytes(root));
  EXPECT_EQ(archive->root()->entry("name")->text(), "first");
  EXPECT_TRUE(archive->root()->entry("version"));
  EXPECT_FALSE(archive->root()->entry("nil"));
  EXPECT_FALSE(archive->root()->entry("other"));
  EXPECT_FALSE(archive->root()->object("name"));
}

TEST(KeyedArchiveTest, oneOtherKeySpoilsADictionary) {
  ArchiveWriter writer;
  const auto dictionary = writer.classNamed("NSDictionary");
  const auto name = writer.text("name"), number = writer.add(writer.inlined().byte(1));
  const auto spoilt = writer.dictionary(dictionary, {{name, name}, {number, name}});
  const auto uneven = writer.object(
      dictionary, {{"NS.keys", writer.references({name})}, {"NS.objects", writer.references({name, name})}});
  const auto keyless = writer.object(dictionary, {{"NS.objects", writer.references({})}});
  for (const auto root : {spoilt, uneven, keyless}) {
    const auto archive = open(writer.bytes(root));
    EXPECT_FALSE(archive->root()->entry("name")) << root;
  }
}

TEST(KeyedArchiveTest, aUUIDHasSixteenBytes) {
  ArchiveWriter writer;
  const auto uuid = writer.classNamed("NSUUID");
  const auto ofBytes = [&](const std::string& bytes, Reference itsClass) {
    const auto archive =
        open(writer.bytes(writer.object(itsClass, {{"NS.uuidbytes", writer.inlined().data(bytes)}})));
    return archive->root()->uuid();
  };
  EXPECT_EQ(ofBytes("0123456789abcdef", uuid)->at(15), 'f');
  EXPECT_FALSE(ofBytes("0123456789abcde", uuid));
  EXPECT_FALSE(ofBytes("0123456789abcdefg", uuid));
  EXPECT_FALSE(ofBytes("0123456789abcdef", writer.classNamed("Item")));
}

TEST(KeyedArchiveTest, anArchiveMayBeCyclic) {
  ArchiveWriter writer;
  const auto item = writer.classNamed("Item"), array = writer.classNamed("NSArray");
  const auto container = writer.next();
  const auto items = writer.next() + 1;
  writer.object(item, {{"items", writer.refer(items)}, {"self", writer.refer(container)}});
  writer.collection(array, {container, items});
  const auto archive = open(writer.bytes(container));
  auto object = archive->root();
  for (int i = 0; i < 1000; ++i) {
    object = object->object("items")->arrayElements()->front().object("self");
    ASSERT_TRUE(object);
  }
  EXPECT_EQ(object->number(), container);
}

TEST(KeyedArchiveTest, onlyTheKeyedArchiversFormatIsOpened) {
  ArchiveWriter writer;
  const auto root = writer.text("root");
  const ArchiveWriter::Fields top{{"root", writer.refer(root)}};
  EXPECT_EQ(open(writer.bytesWithTop(top))->root()->text(), "root");
  EXPECT_FALSE(open(writer.bytesWithTop(top, "NSArchiver")));
  EXPECT_FALSE(open(writer.bytesWithTop(top, "NSKeyedArchiver", 100001)));
  EXPECT_FALSE(open("<dict/>"));
  EXPECT_FALSE(open("<array/>"));
  EXPECT_FALSE(
      open("<dict><key>$archiver</key><string>NSKeyedArchiver</string><key>$version</key>"
           "<integer>100000</integer><key>$objects</key><dict/></dict>"));
}

TEST(KeyedArchiveTest, anArchiveWithoutARootOpensWithoutOne) {
  ArchiveWriter writer;
  const auto store = writer.text("store");
  EXPECT_FALSE(open(writer.bytesWithTop({{"store", writer.refer(store)}}))->root());
  EXPECT_FALSE(open(writer.bytesWithTop({{"root", writer.refer(ArchiveWriter::noObject)}}))->root());
  EXPECT_FALSE(open(writer.bytesWithTop({{"root", writer.inlined().text("root")}}))->root());
  EXPECT_FALSE(open(writer.bytesWithTop({{"root", writer.refer(1000)}}))->root());
}

TEST(KeyedArchiveTest, anXMLArchiveIsReadTheSameWay) {
  const auto archive = open(sampleArchiveInXML());
  ASSERT_TRUE(archive);
  const auto item = archive->root()->entry("backgroundItems");
  EXPECT_EQ(item->integer("userElection"), 2);
  EXPECT_EQ(item->object("internalItems")->setElements()->front().number(), item->number());
}

TEST(KeyedArchiveTest, aLongListOfHintsIsNotReadToItsEnd) {
  ArchiveWriter writer;
  std::vector<std::string> hints(16, "Other");
  hints.back() = "Known";
  EXPECT_EQ(open(writer.bytes(writer.object(writer.classNamed("Newer", {}, hints), {})))->root()->className(),
            "Known");
  hints.insert(hints.begin(), "Other");
  EXPECT_EQ(open(writer.bytes(writer.object(writer.classNamed("Newer", {}, hints), {})))->root()->className(),
            "");
}

}  // namespace
}  // namespace vorli::formats
