#include "linux/startup/FileSystemCalls.h"
#include "posix/StartupFiles.h"
#include "tests/linux/RecordedTree.h"

#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <string>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>
#include <vector>

namespace vorli::linuxhost {
namespace {

namespace fs = std::filesystem;
using ports::MoveResult;
using Names = std::vector<std::string>;

constexpr std::size_t limit = 100;

struct StartupFilesTest : testing::Test {
  RecordedTree tree;
  posix::StartupFiles files{fileSystemCalls()};

  std::string path(const std::string& name) const { return tree.path(name).string(); }
  std::string text(const std::string& name) const {
    std::ifstream in(tree.path(name));
    return {std::istreambuf_iterator(in), {}};
  }
  struct stat status(const std::string& name) const {
    struct stat info {};
    EXPECT_EQ(lstat(path(name).c_str(), &info), 0) << name;
    return info;
  }
  Names all(const std::string& folder) const {
    Names names;
    for (const auto& entry : fs::directory_iterator(tree.path(folder)))
      names.push_back(entry.path().filename().string());
    return names;
  }
};

TEST_F(StartupFilesTest, listsWhatIsVisibleInTheOrderOfItsBytes) {
  for (const char* name : {"a/b", "a/B", "a/.hidden", "a/c/d", "a/ä"}) tree.write(name, "");
  EXPECT_EQ(files.visibleNames(path("a")), (Names{"B", "b", "c", "ä"}));
  EXPECT_EQ(files.visibleNames(path("none")), std::nullopt);
  EXPECT_EQ(files.visibleNames(path("a/b")), std::nullopt);
}

TEST_F(StartupFilesTest, readsRegularFilesUpToTheLimit) {
  tree.write("a", std::string(100, 'x'));
  tree.write("b", std::string(101, 'x'));
  tree.write("empty", "");
  fs::create_symlink("a", tree.path("link"));
  EXPECT_EQ(files.read(path("a"), limit), std::string(100, 'x'));
  EXPECT_EQ(files.read(path("b"), limit), std::nullopt);
  EXPECT_EQ(files.read(path("empty"), limit), "");
  EXPECT_EQ(files.read(path("link"), limit), std::string(100, 'x'));
  EXPECT_EQ(files.read(path("none"), limit), std::nullopt);
}

TEST_F(StartupFilesTest, neverWaitsForTheOtherEndOfAFIFO) {
  tree.replaceByFIFO("fifo");
  tree.replaceByFolder("folder");
  for (const auto& name : {path("fifo"), path("folder"), std::string("/dev/zero"), std::string("/dev/null")})
    EXPECT_EQ(files.read(name, limit), std::nullopt) << name;
  EXPECT_FALSE(files.rewrite(path("fifo"), "", "x"));
}

TEST_F(StartupFilesTest, existsFollowsLinks) {
  tree.write("a", "");
  fs::create_symlink("a", tree.path("link"));
  fs::create_symlink("none", tree.path("dangling"));
  EXPECT_TRUE(files.exists(path("a")));
  EXPECT_TRUE(files.exists(path("link")));
  EXPECT_FALSE(files.exists(path("dangling")));
  EXPECT_TRUE(files.isMissing(path("dangling")));
  EXPECT_EQ(files.linkTarget(path("dangling")), "none");
  EXPECT_EQ(files.linkTarget(path("a")), std::nullopt);
  EXPECT_EQ(files.linkTarget(path("none")), std::nullopt);
}

TEST_F(StartupFilesTest, aFileThatTheUserMayNotSeeIsNotMissing) {
  tree.write("closed/a", "");
  EXPECT_FALSE(files.isMissing(path("closed/a")));
  EXPECT_TRUE(files.isMissing(path("closed/b")));
  EXPECT_TRUE(files.isMissing(path("none/a")));
  EXPECT_TRUE(files.isMissing(path("closed/a/b")));
  chmod(path("closed").c_str(), 0);
  EXPECT_FALSE(files.isMissing(path("closed/a")));
  chmod(path("closed").c_str(), 0700);
}

TEST_F(StartupFilesTest, theBirthTimeSurvivesAMoveAndIsNoOtherTime) {
  tree.write("a", "x");
  const auto birth = files.birthTime(path("a"));
  const timespec longAgo[]{{1000, 0}, {1000, 0}};
  utimensat(AT_FDCWD, path("a").c_str(), longAgo, 0);
  EXPECT_EQ(files.birthTime(path("a")), birth);
  EXPECT_EQ(files.moveWithoutReplacing(path("a"), path("b")), MoveResult::moved);
  EXPECT_EQ(files.birthTime(path("b")), birth);
  EXPECT_EQ(files.birthTime(path("a")), std::nullopt);
  EXPECT_EQ(files.birthTime("/proc/self/stat"), std::nullopt);
}

TEST_F(StartupFilesTest, aMoveNeverReplaces) {
  tree.write("a", "one");
  tree.write("b", "two");
  EXPECT_EQ(files.moveWithoutReplacing(path("a"), path("b")), MoveResult::targetExists);
  EXPECT_EQ(text("a") + text("b"), "onetwo");
  EXPECT_EQ(files.moveWithoutReplacing(path("none"), path("c")), MoveResult::sourceMissing);
  EXPECT_EQ(files.moveWithoutReplacing(path("a"), path("none/a")), MoveResult::failed);
  EXPECT_EQ(text("a"), "one");
}

TEST_F(StartupFilesTest, rewritesOnlyWhatItExpects) {
  tree.write("a", "old");
  EXPECT_FALSE(files.rewrite(path("a"), "other", "new"));
  EXPECT_FALSE(files.rewrite(path("a"), "old and more", "new"));
  EXPECT_FALSE(files.rewrite(path("a"), "ol", "new"));
  EXPECT_EQ(text("a"), "old");
  EXPECT_TRUE(files.rewrite(path("a"), "old", "new"));
  EXPECT_EQ(text("a"), "new");
  EXPECT_FALSE(files.rewrite(path("none"), "", "new"));
  EXPECT_EQ(all("").size(), 2u);  // with /proc: no temporary file is left
}

TEST_F(StartupFilesTest, aRewrittenFileKeepsModeTimesAndAttributes) {
  tree.write("a", "old");
  chmod(path("a").c_str(), 0640);
  const bool hasAttributes = setxattr(path("a").c_str(), "user.note", "mine", 4, 0) == 0;
  const timespec times[]{{1000, 1}, {2000, 2}};
  utimensat(AT_FDCWD, path("a").c_str(), times, 0);
  EXPECT_TRUE(files.rewrite(path("a"), "old", "new"));
  const auto after = status("a");
  EXPECT_EQ(after.st_mode & 07777u, 0640u);
  EXPECT_EQ(after.st_mtim.tv_sec, 2000);
  EXPECT_EQ(after.st_mtim.tv_nsec, 2);
  char value[8] = {};
  EXPECT_EQ(getxattr(path("a").c_str(), "user.note", value, sizeof value), hasAttributes ? 4 : -1);
}

TEST_F(StartupFilesTest, aRewrittenFileIsTheSameFile) {
  tree.write("a", "a long old text");
  const auto before = status("a");
  const auto birth = files.birthTime(path("a"));
  EXPECT_TRUE(files.rewrite(path("a"), "a long old text", "new"));
  EXPECT_EQ(text("a"), "new");
  EXPECT_EQ(status("a").st_ino, before.st_ino);
  EXPECT_EQ(files.birthTime(path("a")), birth);
  EXPECT_EQ(all("").size(), 2u);  // with /proc: nothing is left beside it
}

TEST_F(StartupFilesTest, aFileOfAnyLengthIsReadWhole) {
  for (const std::size_t length : {0u, 1u, 99u, 100u}) {
    tree.write("a", std::string(length, 'x'));
    EXPECT_EQ(files.read(path("a"), limit), std::string(length, 'x'));
  }
  tree.write("a", std::string(limit + 1, 'x'));
  EXPECT_EQ(files.read(path("a"), limit), std::nullopt);
  tree.write("a", std::string(100'000, 'x'));
  EXPECT_EQ(files.read(path("a"), 100'000), std::string(100'000, 'x'));
}

TEST_F(StartupFilesTest, aFileThatIsSetAsideComesBackAsItself) {
  tree.write("a", "old");
  chmod(path("a").c_str(), 0640);
  const auto before = status("a");
  const auto birth = files.birthTime(path("a"));
  EXPECT_TRUE(files.setAside(path("a"), "old", "new", path(".a.aside")));
  EXPECT_EQ(text("a") + text(".a.aside"), "newold");
  EXPECT_EQ(status("a").st_mode, before.st_mode);
  EXPECT_NE(status("a").st_ino, before.st_ino);
  EXPECT_FALSE(files.putBack(path("a"), "other", path(".a.aside")));
  EXPECT_FALSE(files.putBack(path("a"), "new", path("none")));
  EXPECT_EQ(text("a") + text(".a.aside"), "newold");
  EXPECT_TRUE(files.putBack(path("a"), "new", path(".a.aside")));
  EXPECT_EQ(text("a"), "old");
  EXPECT_EQ(status("a").st_ino, before.st_ino);
  EXPECT_EQ(files.birthTime(path("a")), birth);
  EXPECT_EQ(all("").size(), 2u);
}

TEST_F(StartupFilesTest, setsNothingAsideOverAnotherFile) {
  tree.write("a", "old");
  tree.write("b", "mine");
  EXPECT_FALSE(files.setAside(path("a"), "old", "new", path("b")));
  EXPECT_FALSE(files.setAside(path("a"), "other", "new", path("c")));
  EXPECT_FALSE(files.setAside(path("none"), "", "new", path("c")));
  EXPECT_EQ(text("a") + text("b"), "oldmine");
  EXPECT_EQ(all("").size(), 3u);  // with /proc
}

TEST_F(StartupFilesTest, neverRewritesThroughALinkOrASecondName) {
  tree.write("a", "old");
  fs::create_symlink("a", tree.path("link"));
  EXPECT_FALSE(files.rewrite(path("link"), "old", "new"));
  fs::create_hard_link(tree.path("a"), tree.path("twin"));
  EXPECT_FALSE(files.rewrite(path("a"), "old", "new"));
  EXPECT_EQ(text("a"), "old");
}

TEST_F(StartupFilesTest, createsOnlyWhatIsNotThere) {
  EXPECT_TRUE(files.create(path("new/folder/a"), "text"));
  EXPECT_EQ(text("new/folder/a"), "text");
  EXPECT_FALSE(files.create(path("new/folder/a"), "other"));
  fs::create_symlink("none", tree.path("dangling"));
  EXPECT_FALSE(files.create(path("dangling"), "other"));
  EXPECT_EQ(text("new/folder/a"), "text");
  EXPECT_FALSE(fs::exists(tree.path("none")));
  EXPECT_TRUE(files.create(path(std::string(255, 'n')), "text"));  // the longest name
}

TEST_F(StartupFilesTest, aProgramKilledWhileCreatingAFileLeavesNoneAndBlocksNoLaterOne) {
  const pid_t child = fork();
  if (child == 0) {
    const rlimit none{0, 0}, twoBytes{2, 2};
    setrlimit(RLIMIT_CORE, &none);
    setrlimit(RLIMIT_FSIZE, &twoBytes);
    signal(SIGXFSZ, SIG_DFL);  // kills the child after the first bytes
    files.create(path("a"), "text");
    _exit(0);
  }
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  ASSERT_TRUE(WIFSIGNALED(status));
  EXPECT_FALSE(fs::exists(tree.path("a")));
  EXPECT_TRUE(files.create(path("a"), "text"));
  EXPECT_EQ(text("a"), "text");
  EXPECT_EQ(all("").size(), 2u);
}

TEST_F(StartupFilesTest, aFullDiskLeavesNothingHalfWritten) {
  tree.write("a", "old");
  rlimit before{};
  getrlimit(RLIMIT_FSIZE, &before);
  const auto handler = signal(SIGXFSZ, SIG_IGN);
  const rlimit twoBytes{2, before.rlim_max};  // fails as a full disk does, after the first bytes
  setrlimit(RLIMIT_FSIZE, &twoBytes);
  const bool isRewritten = files.rewrite(path("a"), "old", "much longer");
  const bool isCreated = files.create(path("b"), "much longer");
  setrlimit(RLIMIT_FSIZE, &before);
  signal(SIGXFSZ, handler);
  EXPECT_FALSE(isRewritten);
  EXPECT_FALSE(isCreated);
  EXPECT_EQ(text("a"), "old");
  EXPECT_EQ(all("").size(), 2u);
}

TEST_F(StartupFilesTest, removesLinksThemselves) {
  tree.write("a", "");
  fs::create_symlink("a", tree.path("link"));
  EXPECT_TRUE(files.remove(path("link")));
  EXPECT_TRUE(files.exists(path("a")));
  EXPECT_FALSE(files.remove(path("link")));
}

}  // namespace
}  // namespace vorli::linuxhost
