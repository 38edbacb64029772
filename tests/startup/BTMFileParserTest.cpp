#include "startup/BTMFileParser.h"
#include "tests/fakes/StartupFiles.h"
#include "tests/formats/SampleFiles.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace vorli {
namespace {

using Container = BTMFileParser::Container;
using Reference = formats::KeyedArchiveWriter::Reference;
using Strings = std::vector<std::string>;

/// Builds stores piece by piece. The pieces that a test does not set are those of a valid store.
struct BTMFileParserTest : testing::Test {
  BTMFileParserTest() {
    for (const char* path : {"/Applications/A.app", "/Applications/B.app", "/opt/helper", "/opt/other"})
      files.add(path);
  }

  std::vector<Container> parse(const std::string& bytes) {
    files.add("/store", bytes);
    return BTMFileParser::parse(files, "/store");
  }
  Reference classNamed(const std::string& name) {
    const auto [place, isNew] = classes.try_emplace(name, 0);
    if (isNew) place->second = writer.classNamed(name);
    return place->second;
  }
  Reference bookmark(const Strings& components, const std::string& className = "Bookmark") {
    const auto data = writer.data(formats::BookmarkDataWriter::bookmarkOf(components));
    return writer.object(classNamed(className), {{"data", writer.refer(data)}});
  }
  Reference item(Reference itsBookmark, const std::string& className = "BackgroundItem") {
    return writer.object(classNamed(className), {{"bookmark", writer.refer(itsBookmark)}});
  }
  Reference container(formats::KeyedArchiveWriter::Fields fields) {
    return writer.object(classNamed("BackgroundItemContainer"), std::move(fields));
  }
  Reference good() { return container({{"bookmark", writer.refer(bookmark({"Applications", "A.app"}))}}); }

  std::string storeWith(Reference allContainers, const std::string& className = "BackgroundItems",
                        const std::string& key = "backgroundItems") {
    const auto items = writer.object(classNamed(className), {{"allContainers", writer.refer(allContainers)}});
    return writer.bytes(writer.dictionary(classNamed("NSDictionary"), {{writer.text(key), items}}));
  }
  std::string store(const std::vector<Reference>& containers, const std::string& collection = "NSSet") {
    return storeWith(writer.collection(classNamed(collection), containers));
  }
  Strings apps(const std::vector<Container>& containers) const {
    Strings urls;
    for (const auto& each : containers) urls.push_back(each.appURL.value_or("none"));
    return urls;
  }

  fakes::StartupFiles files;
  formats::KeyedArchiveWriter writer;
  std::map<std::string, Reference> classes;
};

TEST_F(BTMFileParserTest, readsAStoreOfTheRealShape) {
  for (const char* path :
       {"/Applications/Example 0.app", "/Applications/Example 1.app", "/Applications/Example 3.app"})
    files.add(path);
  const auto found = parse(formats::sampleStore(4));  // the third application does not exist
  EXPECT_EQ(apps(found), (Strings{"/Applications/Example 0.app", "/Applications/Example 1.app",
                                  "/Applications/Example 3.app"}));
  EXPECT_EQ(found[1].identifier->at(0), 1);
  EXPECT_FALSE(found[0].isEnabled);
  EXPECT_TRUE(found[1].isEnabled);
}

TEST_F(BTMFileParserTest, aMissingOrUnreadableStoreIsEmpty) {
  EXPECT_TRUE(BTMFileParser::parse(files, "/nowhere").empty());
  const auto bytes = store({good()});
  EXPECT_EQ(parse(bytes).size(), 1u);
  files.files["/store"].isReadable = false;
  EXPECT_TRUE(BTMFileParser::parse(files, "/store").empty());
}

TEST_F(BTMFileParserTest, aStoreOfMoreThanSixteenMebibytesIsEmpty) {
  const auto bytes = store({good()});
  files.add("/store", bytes);
  files.files["/store"].content.resize(16 * 1024 * 1024 + 1);
  EXPECT_TRUE(BTMFileParser::parse(files, "/store").empty());
}

TEST_F(BTMFileParserTest, anythingButAnArchiveIsEmpty) {
  EXPECT_TRUE(parse("").empty());
  EXPECT_TRUE(parse("bplist00").empty());
  EXPECT_TRUE(parse(formats::sampleBinaryLaunchAgent()).empty());
  EXPECT_TRUE(parse("<plist><dict/></plist>").empty());
}

TEST_F(BTMFileParserTest, containersComeAsASetOrAnArray) {
  EXPECT_EQ(parse(store({good()}, "NSSet")).size(), 1u);
  EXPECT_EQ(parse(store({good()}, "NSArray")).size(), 1u);
  EXPECT_TRUE(parse(store({good()}, "NSOrderedSet")).empty());
  EXPECT_TRUE(parse(storeWith(writer.text("none"))).empty());
  EXPECT_TRUE(parse(storeWith(formats::KeyedArchiveWriter::noObject)).empty());
}

TEST_F(BTMFileParserTest, aStoreOfAnotherShapeIsEmpty) {
  const auto all = writer.collection(classNamed("NSSet"), {good()});
  EXPECT_EQ(parse(storeWith(all)).size(), 1u);
  EXPECT_TRUE(parse(storeWith(all, "BackgroundItems", "otherItems")).empty());
  EXPECT_TRUE(parse(storeWith(all, "OtherItems")).empty());

  const auto items = writer.object(classNamed("BackgroundItems"), {{"allContainers", writer.refer(all)}});
  const auto array = writer.collection(classNamed("NSArray"), {items});
  EXPECT_TRUE(parse(writer.bytes(array)).empty());
  EXPECT_TRUE(parse(writer.bytesWithTop({{"store", writer.refer(items)}})).empty());
}

TEST_F(BTMFileParserTest, oneKeyThatIsNoTextSpoilsTheRoot) {
  const auto items =
      writer.object(classNamed("BackgroundItems"),
                    {{"allContainers", writer.refer(writer.collection(classNamed("NSSet"), {good()}))}});
  const auto number = writer.add(writer.inlined().byte(7));
  EXPECT_TRUE(parse(writer.bytes(writer.dictionary(
                        classNamed("NSDictionary"),
                        {{writer.text("backgroundItems"), items}, {number, writer.text("x")}})))
                  .empty());
}

TEST_F(BTMFileParserTest, elementsOfAnotherClassAreLeftOut) {
  const auto stray = writer.object(classNamed("Stray"), {});
  EXPECT_EQ(apps(parse(store({stray, good(), writer.text("text")}))), Strings{"/Applications/A.app"});
}

TEST_F(BTMFileParserTest, aContainerOfHelpersAloneHasNoApplication) {
  const auto helpers = writer.collection(
      classNamed("NSSet"),
      {item(bookmark({"opt", "helper"})), item(bookmark({"opt", "gone"})), item(bookmark({"opt", "other"}))});
  const auto found = parse(store({container({{"internalItems", writer.refer(helpers)}})}));
  ASSERT_EQ(found.size(), 1u);
  EXPECT_EQ(found[0].appURL, std::nullopt);
  auto urls = found[0].internalURLs;
  std::ranges::sort(urls);
  EXPECT_EQ(urls, (Strings{"/opt/helper", "/opt/other"}));
  EXPECT_EQ(found[0].identifier, std::nullopt);
}

TEST_F(BTMFileParserTest, helpersOfAnotherKindAreLeftOut) {
  const auto bad = writer.collection(
      classNamed("NSSet"),
      {item(bookmark({"opt", "helper"}), "BackgroundLoginItem"), item(formats::KeyedArchiveWriter::noObject),
       item(bookmark({"opt", "helper"}, "Bookmarks")), writer.object(classNamed("BackgroundItem"), {})});
  EXPECT_TRUE(parse(store({container({{"internalItems", writer.refer(bad)}})})).empty());

  const auto array = writer.collection(classNamed("NSArray"), {item(bookmark({"opt", "helper"}))});
  EXPECT_TRUE(parse(store({container({{"internalItems", writer.refer(array)}})})).empty());
}

TEST_F(BTMFileParserTest, unresolvableItemsAreDropped) {
  const auto gone = container({{"bookmark", writer.refer(bookmark({"Applications", "Gone.app"}))}});
  const auto dataless = container({{"bookmark", writer.refer(writer.object(classNamed("Bookmark"), {}))}});
  const auto broken = container(
      {{"bookmark",
        writer.refer(writer.object(classNamed("Bookmark"), {{"data", writer.refer(writer.data("book"))}}))}});
  EXPECT_EQ(apps(parse(store({gone, dataless, broken, container({}), good()}))),
            Strings{"/Applications/A.app"});
}

TEST_F(BTMFileParserTest, anItemOnAMissingVolumeIsUnresolvable) {
  const auto data =
      writer.data(formats::BookmarkDataWriter::bookmarkOf({"Volumes", "Disk", "A.app"}, "/Volumes/Disk"));
  const auto outside = writer.object(classNamed("Bookmark"), {{"data", writer.refer(data)}});
  const auto bytes = store({container({{"bookmark", writer.refer(outside)}})});
  EXPECT_TRUE(parse(bytes).empty());
  files.add("/Volumes/Disk/A.app");
  EXPECT_EQ(apps(parse(bytes)), Strings{"/Volumes/Disk/A.app"});
}

TEST_F(BTMFileParserTest, onlyAnElectionOfZeroIsEnabled) {
  auto& list = writer.inlined();
  const std::pair<formats::KeyedArchiveWriter::Number, bool> rows[] = {
      {list.byte(0), true},
      {list.byte(1), false},
      {list.byte(2), false},
      {list.integer(-1), false},
      {list.integer(0x100000000), false},
      {list.text("2"), true},
      {list.data("2"), true},
  };
  for (const auto& [value, isEnabled] : rows) {
    const auto one =
        container({{"bookmark", writer.refer(bookmark({"Applications", "A.app"}))}, {"userElection", value}});
    EXPECT_EQ(parse(store({one})).at(0).isEnabled, isEnabled);
  }
  EXPECT_TRUE(parse(store({good()})).at(0).isEnabled);
}

TEST_F(BTMFileParserTest, anIdentifierOfAnotherTypeIsEmpty) {
  const auto one = container({{"bookmark", writer.refer(bookmark({"Applications", "A.app"}))},
                              {"identifier", writer.refer(writer.text("0123456789abcdef"))}});
  EXPECT_EQ(parse(store({one})).at(0).identifier, std::nullopt);
}

TEST_F(BTMFileParserTest, anArrayKeepsWhatItNamesTwice) {
  const auto one = good();
  EXPECT_EQ(parse(store({one, one}, "NSArray")).size(), 2u);
  EXPECT_EQ(parse(store({one, one}, "NSSet")).size(), 1u);
}

TEST_F(BTMFileParserTest, aCycleCausesNoLoop) {
  const Reference itself = writer.next() + 1;
  classNamed("BackgroundItemContainer");
  const auto looped =
      container({{"bookmark", writer.refer(itself)}, {"internalItems", writer.refer(itself)}});
  EXPECT_EQ(looped, itself);
  EXPECT_EQ(parse(store({looped, good()})).size(), 1u);
}

TEST_F(BTMFileParserTest, oneLongCollectionNamedFromManyPlacesIsReadToALimit) {
  std::vector<Reference> helpers;
  for (int i = 0; i < 500; ++i) helpers.push_back(item(bookmark({"opt", "helper"})));
  const auto shared = writer.collection(classNamed("NSSet"), helpers);
  std::vector<Reference> containers;
  for (int i = 0; i < 500; ++i) containers.push_back(container({{"internalItems", writer.refer(shared)}}));
  std::size_t urls = 0;
  for (const auto& each : parse(store(containers))) urls += each.internalURLs.size();
  EXPECT_EQ(urls, 19'960u);  // and 40 containers: 20'000 elements
}

}  // namespace
}  // namespace vorli
