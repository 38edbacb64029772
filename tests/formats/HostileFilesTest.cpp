#include "base/UTF8.h"
#include "formats/BookmarkData.h"
#include "formats/KeyedArchive.h"
#include "tests/formats/SampleFiles.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <random>

namespace vorli::formats {
namespace {

using Object = KeyedArchive::Object;

constexpr std::size_t largestFile = 16 << 20;

// Changes a file as crashes, cables and people do, in the same way in every run.
class Mutations {
 public:
  std::string of(std::string bytes) {
    for (auto changes = 1 + below(3); changes > 0; --changes) change(bytes);
    return bytes;
  }

 private:
  void change(std::string& bytes) {
    const auto at = below(bytes.size() + 1);
    const auto length = below(std::min<std::size_t>(bytes.size() - at, 32) + 1);
    switch (below(6)) {
      case 0:
        if (at < bytes.size()) bytes[at] = static_cast<char>(bytes[at] ^ 1 << below(8));
        break;
      case 1:
        for (std::size_t i = 0; i < length; ++i) bytes[at + i] = extreme();
        break;
      case 2:
        bytes.erase(at, length);
        break;
      case 3:
        bytes.insert(at, bytes.substr(at, length));
        break;
      case 4:
        bytes.replace(at, length, bytes.substr(below(bytes.size() + 1), length));
        break;
      default:
        if (below(4) == 0) bytes.resize(at);
    }
  }
  char extreme() {
    constexpr char bytes[] = {'\0', '\1', '\x7F', '\x80', '\xFF'};
    return bytes[below(std::size(bytes))];
  }
  std::size_t below(std::size_t limit) { return random_() % limit; }

  std::mt19937 random_{20010101};
};

// Visits at most `left` values that a value leads to. Returns whether every text is well-formed.
bool areTextsSound(const PropertyList::Value& value, int& left) {
  if (left-- <= 0) return true;
  if (const auto text = value.text()) return isUTF8(*text);
  if (value.kind() == PropertyList::Kind::dictionary) {
    const auto label = value.find("Label"), arguments = value.find("ProgramArguments");
    return (!label || areTextsSound(*label, left)) && (!arguments || areTextsSound(*arguments, left));
  }
  for (std::size_t i = 0; i < value.count(); ++i) {
    if (!areTextsSound(value.element(i), left)) return false;
  }
  return true;
}

// The files that a store's bookmarks name, read through the store's levels.
std::vector<std::string> pathsOf(std::string_view bytes) {
  std::vector<std::string> paths;
  auto list = readPropertyList(bytes, largestFile);
  if (!list) return paths;
  const auto archive = KeyedArchive::open(
      *std::move(list),
      {"BackgroundItems", "BackgroundItemContainer", "BackgroundItem", "BackgroundLoginItem", "Bookmark"});
  const auto root = archive ? archive->root() : std::nullopt;
  const auto items = root ? root->entry("backgroundItems") : std::nullopt;
  const auto all = items ? items->object("allContainers") : std::nullopt;
  const auto addPath = [&paths](const Object& object) {
    const auto bookmark = object.object("bookmark");
    const auto data = bookmark ? bookmark->object("data") : std::nullopt;
    const auto read = readBookmarkData(data ? data->data().value_or("") : "");
    if (read) paths.push_back(read->path);
  };
  for (const auto& container :
       all ? all->arrayElements().value_or(std::vector<Object>()) : std::vector<Object>()) {
    addPath(container);
    const auto inside = container.object("internalItems");
    for (const auto& item :
         inside ? inside->setElements().value_or(std::vector<Object>()) : std::vector<Object>()) {
      addPath(item);
    }
  }
  return paths;
}

bool isSoundPath(const std::string& path) {
  return path.starts_with('/') && isUTF8(path) && path.find('\0') == std::string::npos &&
         (path + "/").find("/../") == std::string::npos;
}

TEST(HostileFilesTest, theSamplesAreRead) {
  EXPECT_EQ(readPropertyList(sampleLaunchAgent(), largestFile)->root().find("Label")->text(),
            "com.example.updater");
  const auto binary = readPropertyList(sampleBinaryLaunchAgent(), largestFile);
  EXPECT_EQ(binary->root().find("ProgramArguments")->element(1).text(), "--name=B\u00fccher");
  const auto paths = pathsOf(sampleStore(40));
  EXPECT_EQ(paths.size(), 80U);
  EXPECT_EQ(paths.back(), "/Applications/Example 39.app/Contents/Library/LoginItems/Helper.app");
}

TEST(HostileFilesTest, changedLaunchAgentsAreReadOrRefused) {
  Mutations mutations;
  int readable = 0;
  for (const auto& sample : {sampleLaunchAgent(), sampleBinaryLaunchAgent()}) {
    for (int i = 0; i < 3000; ++i) {
      const auto list = readPropertyList(mutations.of(sample), largestFile);
      int left = 1000;
      readable += list ? 1 : 0;
      ASSERT_TRUE(!list || areTextsSound(list->root(), left)) << i;
    }
  }
  // Both outcomes occur often.
  EXPECT_GT(readable, 600);
  EXPECT_LT(readable, 5400);
}

TEST(HostileFilesTest, changedStoresGiveSoundPaths) {
  Mutations mutations;
  const auto sample = sampleStore(3);
  std::size_t found = 0;
  for (int i = 0; i < 2000; ++i) {
    const auto paths = pathsOf(mutations.of(sample));
    found += paths.size();
    ASSERT_TRUE(std::ranges::all_of(paths, isSoundPath)) << i;
  }
  EXPECT_GT(found, 1000U);
}

TEST(HostileFilesTest, changedBookmarksGiveSoundPaths) {
  Mutations mutations;
  const auto sample = sampleBookmark();
  int found = 0;
  for (int i = 0; i < 4000; ++i) {
    const auto bookmark = readBookmarkData(mutations.of(sample));
    found += bookmark ? 1 : 0;
    ASSERT_TRUE(!bookmark || (isSoundPath(bookmark->path) && isSoundPath(bookmark->volume))) << i;
  }
  EXPECT_GT(found, 400);
  EXPECT_LT(found, 3600);
}

}  // namespace
}  // namespace vorli::formats
