#include "macos/daemon/SystemFolders.h"
#include "tests/linux/RecordedTree.h"
#include "tests/macos/runtime/Files.h"

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <string>

namespace vorli::machost {
namespace {

namespace fs = std::filesystem;

// The folder of the moves; the hook that runs between two system calls has no other access to it.
fs::path movedIn;

struct SystemFoldersTest : testing::Test {
  SystemFoldersTest() {
    tree.write("agents/a.plist", "content");
    movedIn = tree.path("agents");
    trust(movedIn);
    trust("a.plist");
  }

  /// Makes the file and the folders above it look as if only root could change them.
  void trust(fs::path path) {
    if (path.is_relative()) path = movedIn / path;
    for (; path != path.root_path(); path = path.parent_path()) macfake::files().trusted.insert(inode(path));
  }
  ino_t inode(const fs::path& path) {
    struct stat status {};
    EXPECT_EQ(lstat(path.c_str(), &status), 0);
    return status.st_ino;
  }
  HelperReply move(const std::string& from = "a.plist", const std::string& to = "a.plist.vorli-disabled") {
    const std::string text = movedIn.string();
    const helper::SystemStartupFolder folder{.path = text, .suffixes = {}};
    return SystemFolders().move({.folder = &folder,
                                 .fromName = from,
                                 .toName = to,
                                 .direction = daemon::MoveOrder::Direction::putAway});
  }
  bool isMoved() {
    return !fs::exists(movedIn / "a.plist") && fs::exists(movedIn / "a.plist.vorli-disabled");
  }

  linuxhost::RecordedTree tree;
};

TEST_F(SystemFoldersTest, aFileOfRootsIsRenamed) {
  EXPECT_EQ(move(), (HelperReply{0, "Moved"}));
  EXPECT_TRUE(isMoved());
}

TEST_F(SystemFoldersTest, nothingIsReplaced) {
  tree.write("agents/a.plist.vorli-disabled", "mine");
  EXPECT_EQ(move().exitCode, EEXIST);
  EXPECT_TRUE(fs::exists(movedIn / "a.plist"));
}

TEST_F(SystemFoldersTest, aMissingFileIsReportedWithTheKernelsError) {
  EXPECT_EQ(move("b.plist").exitCode, ENOENT);
  fs::remove_all(movedIn);
  EXPECT_EQ(move().exitCode, ENOENT);
}

TEST_F(SystemFoldersTest, aFolderThatOthersCanChangeIsRefused) {
  macfake::files().trusted.erase(inode(movedIn));
  fs::permissions(movedIn, fs::perms(0777));
  EXPECT_EQ(move(), (HelperReply{1, "Others than root can change the folder"}));
  EXPECT_FALSE(isMoved());
}

TEST_F(SystemFoldersTest, aFolderAboveThatOthersCanChangeIsRefused) {
  macfake::files().trusted.erase(inode(movedIn.parent_path()));
  fs::permissions(movedIn.parent_path(), fs::perms(0772));
  EXPECT_EQ(move().exitCode, 1);
  EXPECT_FALSE(isMoved());
}

TEST_F(SystemFoldersTest, aListThatGrantsIsRefusedAndOneThatOnlyDeniesIsNot) {
  macfake::files().lists[inode(movedIn)] = {false, true};
  EXPECT_EQ(move().exitCode, 1);
  macfake::files().lists[inode(movedIn)] = {false, false};
  EXPECT_EQ(move().exitCode, 0);
}

TEST_F(SystemFoldersTest, aListThatCannotBeReadIsRefused) {
  macfake::files().canReadLists = false;
  EXPECT_EQ(move().exitCode, 1);
  EXPECT_FALSE(isMoved());
}

TEST_F(SystemFoldersTest, noLinkIsFollowed) {
  fs::rename(movedIn, movedIn.parent_path() / "real");
  fs::create_directory_symlink("real", movedIn);
  EXPECT_NE(move().exitCode, 0);
  EXPECT_TRUE(fs::exists(movedIn.parent_path() / "real/a.plist"));
}

TEST_F(SystemFoldersTest, onlyAPlainFileWithOneNameIsMoved) {
  fs::create_hard_link(movedIn / "a.plist", movedIn / "twin");
  EXPECT_EQ(move(), (HelperReply{1, "Not a plain file of root's"}));
  fs::remove(movedIn / "twin");
  fs::create_symlink("a.plist", movedIn / "link.plist");
  trust("link.plist");
  EXPECT_EQ(move("link.plist", "link.plist.vorli-disabled").exitCode, 1);
  fs::create_directory(movedIn / "folder.plist");
  trust("folder.plist");
  EXPECT_EQ(move("folder.plist", "folder.plist.vorli-disabled").exitCode, 1);
  EXPECT_FALSE(isMoved());
}

TEST_F(SystemFoldersTest, anotherUsersFileIsRefused) {
  macfake::files().trusted.erase(inode(movedIn / "a.plist"));
  if (chown((movedIn / "a.plist").c_str(), 12345, 12345) != 0)
    GTEST_LOG_(INFO) << "not root: the file is ours";
  EXPECT_EQ(move(), (HelperReply{1, "Not a plain file of root's"}));
}

TEST_F(SystemFoldersTest, aFileThatTookThePlaceOfTheCheckedOneGetsItsNameBack) {
  macfake::files().afterRename = [] {
    // Simulates that another file had the name when it was renamed.
    fs::rename(movedIn / "a.plist.vorli-disabled", movedIn / "checked");
    std::ofstream(movedIn / "a.plist.vorli-disabled") << "intruder";
  };
  EXPECT_EQ(move(), (HelperReply{1, "The file was changed for another meanwhile"}));
  std::string text;
  std::getline(std::ifstream(movedIn / "a.plist"), text);
  EXPECT_EQ(text, "intruder");
  EXPECT_FALSE(fs::exists(movedIn / "a.plist.vorli-disabled"));
}

TEST_F(SystemFoldersTest, aFileSystemThatCannotRenameSafelyMovesNothing) {
  macfake::files().canSwap = false;
  EXPECT_EQ(move().exitCode, ENOTSUP);
  EXPECT_TRUE(fs::exists(movedIn / "a.plist"));
}

}  // namespace
}  // namespace vorli::machost
