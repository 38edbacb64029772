#include "app/AppSettings.h"
#include "app/UserDefaults.h"
#include "linux/KeyValueStore.h"
#include "tests/fakes/CapturedLog.h"
#include "tests/fakes/ManualScheduler.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <sys/stat.h>
#include <unistd.h>

namespace vorli {
namespace {

using linuxhost::KeyValueStore;
using ports::StoredDictionary;
using ports::StoredValue;

struct KeyValueStoreTest : testing::Test {
  void SetUp() override {
    std::string pattern = (std::filesystem::temp_directory_path() / "vorli-settings-XXXXXX").string();
    folder = mkdtemp(pattern.data());
    file = folder / "Vorli" / "Vorli.ini";
  }
  void TearDown() override { std::filesystem::remove_all(folder); }

  void write(const std::string& text) {
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << text;
  }
  std::string read(const std::filesystem::path& path) {
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
  }
  KeyValueStore open() { return KeyValueStore(scheduler, file.string()); }

  fakes::ManualScheduler scheduler;
  fakes::CapturedLog log;
  std::filesystem::path folder;
  std::filesystem::path file;
};

TEST_F(KeyValueStoreTest, everyKindOfValueSurvivesARestart) {
  const std::vector<std::pair<std::string, StoredValue>> values{
      {"flag", true},
      {"off", false},
      {"count", std::int64_t{-5}},
      {"real", 0.1},
      {"wholeReal", 3.0},
      {"text", std::string("opt+shift+C")},
      {"empty", std::string()},
      {"looksLikeFlag", std::string("true")},
      {"looksLikeCount", std::string("60")},
      {"looksLikeMark", std::string("@Date 5")},
      {"paddedCount", std::string("060")},
      {"unicode", std::string("Grün, \"quoted\"; = [x]\nsecond line")},
      {"date", Date{1700000000.25}},
      {"past", Date::distantPast()},
      {"noTexts", std::vector<std::string>{}},
      {"oneText", std::vector<std::string>{"a"}},
      {"texts", std::vector<std::string>{"a", "", "b, c", "@Strings"}},
      {"noEntries", StoredDictionary{}},
      {"oneEntry", StoredDictionary{{"org.example=x, y", Date{1.5}}}},
      {"entries", StoredDictionary{{"", std::string("60")},
                                   {"@Date 5", std::int64_t{60}},
                                   {"c", std::string("a = b, \"c\"")},
                                   {"d", false},
                                   {"e", 0.5},
                                   {"f", Date{2.0}}}},
      {"vorli.lastLaunchedBuild", std::string("100")},
  };
  {
    auto store = open();
    for (const auto& [key, value] : values) store.setObject(key, value);
  }
  auto store = open();
  for (const auto& [key, value] : values) {
    const auto stored = store.object(key);
    ASSERT_TRUE(stored) << key;
    EXPECT_TRUE(*stored == value) << key;
  }
}

TEST_F(KeyValueStoreTest, anAbsentKeyIsNotAStoredFalse) {
  auto store = open();
  EXPECT_FALSE(store.object("edgeGlow"));
  store.setObject("edgeGlow", StoredValue(false));
  ASSERT_TRUE(store.object("edgeGlow"));
  EXPECT_TRUE(*store.object("edgeGlow") == StoredValue(false));
  store.setObject("edgeGlow", std::nullopt);
  EXPECT_FALSE(store.object("edgeGlow"));
}

TEST_F(KeyValueStoreTest, changesOfOneTurnReachTheDiskInOneWrite) {
  auto store = open();
  store.setObject("autoClear", StoredValue(true));
  EXPECT_FALSE(std::filesystem::exists(file));
  scheduler.runReady();
  EXPECT_NE(read(file).find("autoClear=true"), std::string::npos);
}

TEST_F(KeyValueStoreTest, aPersonCanEditTheFile) {
  write("[General]\nautoClear=true\nidleThresholdMinutes=25\nglobalHotkeyCombo=ctrl+opt+V\n");
  auto store = open();
  AppSettings settings(store);
  EXPECT_TRUE(settings.autoClear());
  EXPECT_EQ(settings.idleThresholdMinutes(), 25);
  EXPECT_EQ(settings.globalHotkeyCombo().get(), "ctrl+opt+V");
}

TEST_F(KeyValueStoreTest, aValueThatIsNoDateReadsAsNoDate) {
  write("[General]\nlastAutoRefresh=\"@Date yesterday\"\nother=@Invalid()\n");
  auto store = open();
  EXPECT_FALSE(AppSettings(store).lastAutoRefresh());
  EXPECT_FALSE(dateForKey(store, "other"));
}

TEST_F(KeyValueStoreTest, aMalformedEntryOfADictionaryIsDroppedAlone) {
  write("[General]\ndates=@Dictionary, a, @Date x, b, 60, c, @What 1, d, \"@Date 1.5\", last\n");
  auto store = open();
  ASSERT_TRUE(store.object("dates"));
  EXPECT_TRUE(*store.object("dates") ==
              StoredValue(StoredDictionary{{"b", std::int64_t{60}}, {"d", Date{1.5}}}));
}

TEST_F(KeyValueStoreTest, aDamagedFileIsKeptAsideAndTheDefaultsApply) {
  const std::string damage("[General]\nautoClear=true\n\0\x01\xff garbage", 36);
  write(damage);
  {
    auto store = open();
    EXPECT_FALSE(AppSettings(store).autoClear());
    store.setObject("edgeGlow", StoredValue(true));
  }
  EXPECT_EQ(read(file.string() + ".damaged"), damage);
  EXPECT_EQ(log.lines().size(), 1u);
  EXPECT_EQ(log.lines().front().level, LogLevel::error);
  auto again = open();
  EXPECT_TRUE(boolForKey(again, "edgeGlow"));
}

TEST_F(KeyValueStoreTest, aFileOfAnotherKindIsKeptAside) {
  write("<?xml version=\"1.0\"?>\n<plist/>\n");
  auto store = open();
  EXPECT_TRUE(std::filesystem::exists(file.string() + ".damaged"));
}

TEST_F(KeyValueStoreTest, aFolderInTheFilesPlaceLosesNothingAndIsTold) {
  std::filesystem::create_directories(file);
  auto store = open();
  store.setObject("autoClear", StoredValue(true));
  scheduler.runReady();
  EXPECT_TRUE(boolForKey(store, "autoClear"));
  EXPECT_TRUE(std::filesystem::is_directory(file));
  EXPECT_GE(log.lines().size(), 1u);
}

TEST_F(KeyValueStoreTest, aFailedWriteKeepsTheValueAndIsToldOnce) {
  // A full disk without a disk: the folder of the file is a file.
  std::ofstream(folder / "Vorli") << "in the way";
  auto store = open();
  store.setObject("autoClear", StoredValue(true));
  scheduler.runReady();
  store.setObject("edgeGlow", StoredValue(true));
  scheduler.runReady();
  EXPECT_TRUE(boolForKey(store, "autoClear"));
  EXPECT_EQ(log.lines().size(), 1u);
}

}  // namespace
}  // namespace vorli
