#include "linux/session/KeyValueStore.h"
#include "settings/AppSettings.h"
#include "settings/UserDefaults.h"
#include "tests/fakes/CapturedLog.h"
#include "tests/fakes/ManualScheduler.h"

#include <csignal>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace vorli {
namespace {

using linuxhost::KeyValueStore;

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

TEST_F(KeyValueStoreTest, aValueThatIsStoredAlreadyIsNotWrittenAgain) {
  const auto setAll = [](KeyValueStore& store) {
    store.setObject("autoClear", StoredValue(true));
    store.setObject("lastLaunchedBuild", StoredValue(std::string("7")));
    store.setObject("list", StoredValue(std::vector<std::string>{"a", "b"}));
    store.setObject("noTexts", StoredValue(std::vector<std::string>{}));
    store.setObject("noEntries", StoredValue(StoredDictionary{}));
    store.setObject("absent", std::nullopt);
  };
  {
    auto store = open();
    setAll(store);
  }
  const std::filesystem::file_time_type longAgo{};
  std::filesystem::last_write_time(file, longAgo);
  auto store = open();
  setAll(store);
  scheduler.runReady();
  EXPECT_EQ(std::filesystem::last_write_time(file), longAgo);
  store.setObject("autoClear", StoredValue(false));
  scheduler.runReady();
  EXPECT_NE(std::filesystem::last_write_time(file), longAgo);
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

TEST_F(KeyValueStoreTest, aValueThatCannotBeUnderstoodIsPresentAndFalse) {
  write("[General]\nquietDuringFocus=\"@Date x\"\nhapticFeedback=@Nothing\n");
  auto store = open();
  EXPECT_FALSE(AppSettings(store).quietDuringFocus());
  EXPECT_FALSE(AppSettings(store).hapticFeedback());
  EXPECT_TRUE(store.object("quietDuringFocus"));
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

TEST_F(KeyValueStoreTest, aFolderInPlaceOfTheFileLosesNothingAndIsLogged) {
  std::filesystem::create_directories(file);
  auto store = open();
  store.setObject("autoClear", StoredValue(true));
  scheduler.runReady();
  EXPECT_TRUE(boolForKey(store, "autoClear"));
  EXPECT_TRUE(std::filesystem::is_directory(file));
  EXPECT_GE(log.lines().size(), 1u);
}

TEST_F(KeyValueStoreTest, aByteOrderMarkIsSkipped) {
  write("\xEF\xBB\xBF[General]\nautoClear=true\n");
  auto store = open();
  EXPECT_TRUE(boolForKey(store, "autoClear"));
  EXPECT_TRUE(log.lines().empty());
}

// A FIFO represents everything that is neither file nor folder. Opening it would block for ever.
TEST_F(KeyValueStoreTest, anythingButAFileIsSetAsideUnread) {
  std::filesystem::create_directories(file.parent_path());
  ASSERT_EQ(mkfifo(file.c_str(), 0600), 0);
  auto store = open();
  store.setObject("autoClear", StoredValue(true));
  scheduler.runReady();
  EXPECT_TRUE(std::filesystem::is_fifo(file.string() + ".damaged"));
  EXPECT_NE(read(file).find("autoClear=true"), std::string::npos);
  EXPECT_EQ(log.lines().size(), 1u);
}

TEST_F(KeyValueStoreTest, theTargetOfALinkIsNotReplaced) {
  std::filesystem::create_directories(file.parent_path());
  const auto target = folder / "target";
  ASSERT_EQ(mkfifo(target.c_str(), 0600), 0);
  std::filesystem::create_symlink(target, file);
  auto store = open();
  store.setObject("autoClear", StoredValue(true));
  scheduler.runReady();
  EXPECT_TRUE(std::filesystem::is_fifo(target));
  EXPECT_TRUE(std::filesystem::is_regular_file(std::filesystem::symlink_status(file)));
}

TEST_F(KeyValueStoreTest, settingsLastInMemoryIfTheFileCannotBeReplaced) {
  std::filesystem::create_directories(file.string() + ".damaged/in/the/way");
  ASSERT_EQ(mkfifo(file.c_str(), 0600), 0);
  auto store = open();
  store.setObject("autoClear", StoredValue(true));
  scheduler.runReady();
  EXPECT_TRUE(boolForKey(store, "autoClear"));
  EXPECT_TRUE(std::filesystem::is_fifo(file));
  EXPECT_EQ(log.lines().size(), 2u);  // not set aside, not written
}

// A limit on the size of files ends a write in the middle, as a full disk does.
struct FileSizeLimit {
  explicit FileSizeLimit(rlim_t bytes) : handlerBefore(std::signal(SIGXFSZ, SIG_IGN)) {
    getrlimit(RLIMIT_FSIZE, &before);
    const rlimit limit{bytes, before.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limit);
  }
  ~FileSizeLimit() {
    setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handlerBefore);
  }
  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;

  rlimit before{};
  void (*handlerBefore)(int);
};

TEST_F(KeyValueStoreTest, aWriteThatFillsTheDiskLeavesTheFileWholeAndTheNextOneCatchesUp) {
  auto store = open();
  store.setObject("autoClear", StoredValue(true));
  scheduler.runReady();
  const auto before = read(file);
  {
    const FileSizeLimit full(4096);
    store.setObject("text", StoredValue(std::string(100'000, 'x')));
    scheduler.runReady();
  }
  EXPECT_EQ(read(file), before);
  EXPECT_EQ(log.lines().size(), 1u);
  store.setObject("edgeGlow", StoredValue(true));
  scheduler.runReady();
  auto again = open();
  EXPECT_TRUE(boolForKey(again, "autoClear"));
  EXPECT_TRUE(boolForKey(again, "edgeGlow"));
  EXPECT_EQ(stringForKey(again, "text"), std::string(100'000, 'x'));
}

TEST_F(KeyValueStoreTest, aWriteLeavesNothingElseInTheFolder) {
  auto store = open();
  store.setObject("autoClear", StoredValue(true));
  scheduler.runReady();
  const FileSizeLimit full(4096);
  store.setObject("text", StoredValue(std::string(100'000, 'x')));
  scheduler.runReady();
  const std::filesystem::directory_iterator entries(file.parent_path());
  EXPECT_EQ(std::distance(begin(entries), end(entries)), 1);
}

TEST_F(KeyValueStoreTest, editsWhileTheProgramRunsAreKept) {
  auto store = open();
  store.setObject("autoClear", StoredValue(true));
  store.setObject("edgeGlow", StoredValue(true));
  scheduler.runReady();
  write("[General]\nautoClear=false\nmine=5\n\n[Section]\nkey=\"a, b\"\n");
  store.setObject("edgeGlow", StoredValue(false));
  scheduler.runReady();
  EXPECT_TRUE(boolForKey(store, "autoClear"));  // not noticed before the next start
  auto again = open();
  EXPECT_FALSE(boolForKey(again, "autoClear"));
  EXPECT_EQ(integerForKey(again, "mine"), 5);
  EXPECT_EQ(stringForKey(again, "Section/key"), "a, b");
  EXPECT_TRUE(again.object("edgeGlow") == StoredValue(false));
}

TEST_F(KeyValueStoreTest, removingTheLastKeyLeavesAnEmptyFile) {
  auto store = open();
  store.setObject("autoClear", StoredValue(true));
  scheduler.runReady();
  store.setObject("autoClear", std::nullopt);
  scheduler.runReady();
  EXPECT_TRUE(std::filesystem::exists(file));
  EXPECT_FALSE(open().object("autoClear"));
  EXPECT_TRUE(log.lines().empty());
}

TEST_F(KeyValueStoreTest, aLinkedFileStaysWhereItIsAndWhatItIs) {
  std::filesystem::create_directories(file.parent_path());
  const auto target = folder / "elsewhere.ini";
  std::ofstream(target) << "[General]\nedgeGlow=true\n";
  std::filesystem::permissions(target,
                               std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
  std::filesystem::create_symlink(target, file);
  auto store = open();
  store.setObject("autoClear", StoredValue(true));
  scheduler.runReady();
  EXPECT_TRUE(std::filesystem::is_symlink(file));
  EXPECT_NE(read(target).find("autoClear=true"), std::string::npos);
  EXPECT_EQ(std::filesystem::status(target).permissions(),
            std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
}

TEST_F(KeyValueStoreTest, aVariableWithARelativeFolderIsIgnored) {
  const auto before = qgetenv("XDG_CONFIG_HOME");
  qputenv("XDG_CONFIG_HOME", "somewhere");
  const auto relative = KeyValueStore::defaultFile();
  qputenv("XDG_CONFIG_HOME", "/somewhere");
  const auto absolute = KeyValueStore::defaultFile();
  before.isNull() ? qunsetenv("XDG_CONFIG_HOME") : qputenv("XDG_CONFIG_HOME", before);
  EXPECT_TRUE(relative.ends_with("/.config/Vorli/Vorli.ini")) << relative;
  EXPECT_EQ(absolute, "/somewhere/Vorli/Vorli.ini");
}

TEST_F(KeyValueStoreTest, aFailedWriteKeepsTheValueAndIsLoggedOnce) {
  // Fails like a full disk, because the folder of the file is itself a file.
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
