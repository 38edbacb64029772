#include "posix/Files.h"

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <optional>
#include <string>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utime.h>

namespace vorli::posix {
namespace {

struct FilesTest : testing::Test {
  FilesTest() {
    std::string pattern = (std::filesystem::temp_directory_path() / "vorli-files-XXXXXX").string();
    folder = mkdtemp(pattern.data());
  }
  ~FilesTest() override { std::filesystem::remove_all(folder); }

  std::string path(const std::string& name) const { return folder + "/" + name; }
  std::string contents(const std::string& name) const {
    std::ifstream file(path(name), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  std::string folder;
  Files files;
};

TEST_F(FilesTest, foldersAreMadeWithThoseAboveThemForThisUserAlone) {
  EXPECT_TRUE(files.createFolder(path("a/b/c")));
  EXPECT_TRUE(files.createFolder(path("a/b/c")));
  struct stat status {};
  ASSERT_EQ(stat(path("a/b").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777u, 0700u);
}

TEST_F(FilesTest, folderThatIsAFileCannotBeMade) {
  std::ofstream(path("a")) << "x";
  EXPECT_FALSE(files.createFolder(path("a")));
  EXPECT_FALSE(files.createFolder(path("a/b")));
  EXPECT_EQ(contents("a"), "x");
}

TEST_F(FilesTest, appendMakesAFileAndAddsToIt) {
  EXPECT_TRUE(files.append(path("log"), "one\n"));
  EXPECT_TRUE(files.append(path("log"), "two\n"));
  EXPECT_EQ(contents("log"), "one\ntwo\n");
  EXPECT_EQ(files.size(path("log")), 8u);
  struct stat status {};
  ASSERT_EQ(stat(path("log").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777u, 0600u);
}

TEST_F(FilesTest, onlyRegularFilesAreReadOrWritten) {
  ASSERT_EQ(mkfifo(path("pipe").c_str(), 0600), 0);
  EXPECT_FALSE(files.append(path("pipe"), "x"));
  EXPECT_EQ(files.read(path("pipe"), 100), std::nullopt);
  EXPECT_EQ(files.size(path("pipe")), std::nullopt);
  EXPECT_FALSE(files.append(folder, "x"));
  EXPECT_EQ(files.read(folder, 100), std::nullopt);
  EXPECT_EQ(files.read("/dev/zero", 100), std::nullopt);
  EXPECT_FALSE(files.append("/dev/full", "x"));
}

/// Limits the length of files, like a full disk, as long as the object exists.
class FullDisk {
 public:
  explicit FullDisk(rlim_t longest) : signal_(std::signal(SIGXFSZ, SIG_IGN)) {
    getrlimit(RLIMIT_FSIZE, &before_);
    rlimit limit = before_;
    limit.rlim_cur = longest;
    setrlimit(RLIMIT_FSIZE, &limit);
  }
  ~FullDisk() {
    setrlimit(RLIMIT_FSIZE, &before_);
    std::signal(SIGXFSZ, signal_);
  }
  FullDisk(const FullDisk&) = delete;
  FullDisk& operator=(const FullDisk&) = delete;

 private:
  void (*signal_)(int);
  rlimit before_{};
};

TEST_F(FilesTest, diskThatIsFullKeepsWhatWasThere) {
  ASSERT_TRUE(files.append(path("log"), "kept\n"));
  bool isAppended = true;
  {
    const FullDisk disk(5);
    isAppended = files.append(path("log"), "lost\n");
  }
  EXPECT_FALSE(isAppended);
  EXPECT_EQ(contents("log"), "kept\n");
}

TEST_F(FilesTest, diskThatTakesHalfALineLosesAllOfItAndNothingElse) {
  ASSERT_TRUE(files.append(path("log"), "kept\n"));
  bool isAppended = true;
  {
    const FullDisk disk(8);
    isAppended = files.append(path("log"), "lost\n");
  }
  EXPECT_FALSE(isAppended);
  EXPECT_TRUE(files.append(path("log"), "next\n"));
  EXPECT_EQ(contents("log"), "kept\nnext\n");
}

TEST_F(FilesTest, fileIsReadWholeOrNotAtAll) {
  const std::string bytes(40'000, 'x');
  files.append(path("file"), bytes);
  EXPECT_EQ(files.read(path("file"), 40'000), bytes);
  EXPECT_EQ(files.read(path("file"), 39'999), std::nullopt);
  EXPECT_EQ(files.read(path("none"), 100), std::nullopt);
}

TEST_F(FilesTest, moveReplacesAndSaysWhyItFailed) {
  files.append(path("a"), "new");
  files.append(path("b"), "old");
  EXPECT_TRUE(files.move(path("a"), path("b")));
  EXPECT_EQ(contents("b"), "new");
  const auto failed = files.move(path("a"), path("c"));
  ASSERT_FALSE(failed);
  EXPECT_EQ(failed.error(), "No such file or directory");
}

TEST_F(FilesTest, folderIsNotReplacedByAFile) {
  files.append(path("a"), "kept");
  files.createFolder(path("b"));
  EXPECT_FALSE(files.move(path("a"), path("b")));
  EXPECT_EQ(contents("a"), "kept");
}

TEST_F(FilesTest, clearedFileIsEmptyAndNoneIsMade) {
  files.append(path("log"), "old");
  EXPECT_TRUE(files.clear(path("log")));
  EXPECT_EQ(files.size(path("log")), 0u);
  EXPECT_FALSE(files.clear(path("none")));
  EXPECT_EQ(files.size(path("none")), std::nullopt);
  EXPECT_FALSE(files.clear(folder));
}

TEST_F(FilesTest, listIsInOrderWithoutHiddenFiles) {
  for (const char* name : {"b", "a", ".c"}) files.append(path(name), "");
  const utimbuf times{.actime = 0, .modtime = 1000};
  utime(path("a").c_str(), &times);
  const auto entries = files.list(folder);
  ASSERT_TRUE(entries);
  ASSERT_EQ(entries->size(), 2u);
  EXPECT_EQ(entries->at(0).name, "a");
  EXPECT_EQ(entries->at(0).modified, Date{1000.0});
  EXPECT_EQ(entries->at(1).name, "b");
  EXPECT_EQ(files.list(path("none")), std::nullopt);
  EXPECT_EQ(files.list(path("a")), std::nullopt);
}

}  // namespace
}  // namespace vorli::posix
