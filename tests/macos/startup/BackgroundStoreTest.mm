#include "macos/startup/BackgroundStore.h"
#include "tests/formats/SampleFiles.h"
#include "tests/macos/runtime/Machine.h"

#include <cstdio>
#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace vorli::machost {
namespace {

using Containers = std::vector<ports::BackgroundContainer>;
using Reference = formats::KeyedArchiveWriter::Reference;

class BackgroundStoreTest : public testing::Test {
 protected:
  ~BackgroundStoreTest() override { std::remove(path.c_str()); }

  auto read(const std::string& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
    return readBackgroundStore(path);
  }
  // A store whose containers are a list, and each of which has this class and these fields.
  std::string storeOf(const char* className, const formats::KeyedArchiveWriter::Fields& fields) {
    const auto container = writer.object(writer.classNamed(className), fields);
    const auto all = writer.collection(writer.classNamed("NSArray"), {container});
    const auto items =
        writer.object(writer.classNamed("BackgroundItems"), {{"allContainers", writer.refer(all)}});
    return writer.bytes(
        writer.dictionary(writer.classNamed("NSDictionary"), {{writer.text("backgroundItems"), items}}));
  }
  formats::KeyedArchiveWriter::Number bookmark() {
    const auto data = writer.data(formats::BookmarkDataWriter::bookmarkOf({"Applications", "A.app"}));
    return writer.refer(writer.object(writer.classNamed("Bookmark"), {{"data", writer.refer(data)}}));
  }
  static void exists(const char* file) { macfake::machine().displayNames[file] = file; }

  formats::KeyedArchiveWriter writer;
  const std::string path = testing::TempDir() + "vorli-background-store";
};

TEST_F(BackgroundStoreTest, aContainerHasItsApplicationItsHelpersAndItsState) {
  for (const char* file : {"/Applications/A.app", "/opt/one", "/opt/two"}) exists(file);
  EXPECT_EQ(read(formats::sampleStoreOfHelpers()),
            (Containers{{"/Applications/A.app", false, {"/opt/one", "/opt/two"}}}));
}

TEST_F(BackgroundStoreTest, aListOfContainersIsReadLikeASetAndNoElectionIsEnabled) {
  exists("/Applications/A.app");
  EXPECT_EQ(read(storeOf("BackgroundItemContainer", {{"bookmark", bookmark()}})),
            (Containers{{"/Applications/A.app", true, {}}}));
}

TEST_F(BackgroundStoreTest, everyElectionButZeroIsDisabled) {
  exists("/Applications/A.app");
  for (const int election : {0, 1, 2, 7}) {
    const auto containers =
        read(storeOf("BackgroundItemContainer",
                     {{"bookmark", bookmark()}, {"userElection", writer.inlined().integer(election)}}));
    EXPECT_EQ(containers, (Containers{{"/Applications/A.app", election == 0, {}}})) << election;
  }
}

TEST_F(BackgroundStoreTest, aBookmarkThatDoesNotResolveIsLeftOut) {
  exists("/opt/two");
  EXPECT_EQ(read(formats::sampleStoreOfHelpers()), (Containers{{std::nullopt, false, {"/opt/two"}}}));
}

TEST_F(BackgroundStoreTest, aContainerOfNothingOrOfAnotherClassIsLeftOut) {
  EXPECT_EQ(read(formats::sampleStoreOfHelpers()), Containers());
  exists("/Applications/A.app");
  EXPECT_EQ(read(storeOf("Bookmark", {{"bookmark", bookmark()}})), Containers());
}

TEST_F(BackgroundStoreTest, fieldsOfAnotherTypeAreEmpty) {
  exists("/Applications/A.app");
  const auto text = writer.refer(writer.text("no set"));
  EXPECT_EQ(read(storeOf("BackgroundItemContainer", {{"bookmark", bookmark()}, {"internalItems", text}})),
            (Containers{{"/Applications/A.app", true, {}}}));
}

TEST_F(BackgroundStoreTest, aStoreThatIsMissingOrOfAnotherFormatHasNoContainers) {
  EXPECT_EQ(readBackgroundStore("/nowhere/store"), Containers());
  EXPECT_EQ(read("no archive"), Containers());
  const auto noItems = writer.text("no items");
  EXPECT_EQ(read(writer.bytes(writer.dictionary(writer.classNamed("NSDictionary"),
                                                {{writer.text("backgroundItems"), noItems}}))),
            Containers());
}

TEST_F(BackgroundStoreTest, anExceptionOfTheSystemIsADamagedStore) {
  exists("/Applications/A.app");
  macfake::machine().decodingThrows = true;
  EXPECT_EQ(read(storeOf("BackgroundItemContainer", {{"bookmark", bookmark()}})), Containers());
}

}  // namespace
}  // namespace vorli::machost
