#include "macos/startup/FileSystemCalls.h"
#include "posix/StartupFiles.h"
#include "tests/linux/RecordedTree.h"
#include "tests/macos/runtime/Files.h"

#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <string>

// Covers what the shared tests of both systems leave out.

namespace vorli::machost {
namespace {

using ports::MoveResult;

struct MacStartupFilesTest : testing::Test {
  std::string path(const std::string& name) const { return tree.path(name).string(); }
  std::string text(const std::string& name) const {
    std::ifstream in(tree.path(name));
    return {std::istreambuf_iterator(in), {}};
  }
  ino_t inode(const std::string& name) const {
    struct stat status {};
    EXPECT_EQ(lstat(path(name).c_str(), &status), 0);
    return status.st_ino;
  }

  linuxhost::RecordedTree tree;
  posix::StartupFiles files{fileSystemCalls()};
};

TEST_F(MacStartupFilesTest, flagsOfAFileAreKeptOrItIsNotChanged) {
  tree.write("a", "old");
  macfake::files().flags[inode("a")] = 0x8000;
  EXPECT_TRUE(files.rewrite(path("a"), "old", "new"));
  EXPECT_EQ(macfake::files().flags[inode("a")], 0x8000U);
  macfake::files().keepsFlags = false;
  EXPECT_FALSE(files.rewrite(path("a"), "new", "newer"));
  EXPECT_EQ(text("a"), "new");
}

TEST_F(MacStartupFilesTest, aFileSystemWithoutTheSwapReplaces) {
  macfake::files().canSwap = false;
  tree.write("a", "old");
  EXPECT_TRUE(files.rewrite(path("a"), "old", "new"));
  EXPECT_EQ(text("a"), "new");
  EXPECT_FALSE(files.exists(path(".a.vorli-new")));
}

TEST_F(MacStartupFilesTest, aFileSystemThatKnowsNoFlagsMovesByLinks) {
  macfake::files().canSwap = false;
  tree.write("a", "one");
  tree.write("b", "two");
  EXPECT_EQ(files.moveWithoutReplacing(path("a"), path("b")), MoveResult::targetExists);
  EXPECT_EQ(files.moveWithoutReplacing(path("a"), path("c")), MoveResult::moved);
  EXPECT_EQ(files.moveWithoutReplacing(path("none"), path("d")), MoveResult::failed);
  EXPECT_EQ(text("c") + text("b"), "onetwo");
  EXPECT_FALSE(files.exists(path("a")));
}

TEST_F(MacStartupFilesTest, leftoversOfAnEarlierRunAreNoObstacle) {
  tree.write("a", "old");
  tree.write(".a.vorli-new", "left behind");
  EXPECT_TRUE(files.rewrite(path("a"), "old", "new"));
  EXPECT_EQ(text("a"), "new");
  EXPECT_FALSE(files.exists(path(".a.vorli-new")));
}

}  // namespace
}  // namespace vorli::machost
