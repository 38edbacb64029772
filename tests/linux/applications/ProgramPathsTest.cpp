#include "linux/applications/ProgramPaths.h"
#include "posix/FileDescriptor.h"
#include "tests/linux/RecordedTree.h"

#include <fcntl.h>
#include <gtest/gtest.h>

namespace vorli::linuxhost {
namespace {

struct ProgramPathsTest : testing::Test {
  std::string find(std::int32_t pid, std::uint64_t startTicks = 100, std::string_view name = "name") {
    const auto path = paths.find({pid, startTicks, name}, folder.get());
    return path ? std::string(path->view()) : "none";
  }
  void keepOnly(std::initializer_list<std::int32_t> pids) { paths.keepOnly(std::vector(pids)); }

  RecordedTree tree;
  posix::FileDescriptor folder{open(tree.path("proc").c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)};
  ProgramPaths paths{tree.root()};
};

TEST_F(ProgramPathsTest, aPathIsAskedOfTheKernelOnce) {
  tree.program(7, "/usr/bin/seven");
  EXPECT_EQ(find(7), "/usr/bin/seven");
  tree.program(7, "/usr/bin/other");
  EXPECT_EQ(find(7), "/usr/bin/seven");
}

TEST_F(ProgramPathsTest, aMissingPathIsRememberedToo) {
  EXPECT_EQ(find(7), "none");
  tree.program(7, "/usr/bin/late");
  EXPECT_EQ(find(7), "none");
}

TEST_F(ProgramPathsTest, anotherStartTimeIsAnotherProcess) {
  tree.program(7, "/usr/bin/seven");
  EXPECT_EQ(find(7, 100), "/usr/bin/seven");
  tree.program(7, "/usr/bin/successor");
  EXPECT_EQ(find(7, 101), "/usr/bin/successor");
  EXPECT_EQ(paths.size(), 1U);
}

TEST_F(ProgramPathsTest, anotherNameIsAnotherProgramOfTheSameProcess) {
  tree.program(7, "/usr/bin/shell");
  EXPECT_EQ(find(7, 100, "shell"), "/usr/bin/shell");
  tree.program(7, "/usr/bin/editor");
  EXPECT_EQ(find(7, 100, "editor"), "/usr/bin/editor");
}

TEST_F(ProgramPathsTest, processesMayBeAskedInAnyOrder) {
  for (const std::int32_t pid : {5, 9, 3, 7, 4}) {
    tree.program(pid, "/bin/p" + std::to_string(pid));
    EXPECT_EQ(find(pid), "/bin/p" + std::to_string(pid));
    tree.program(pid, "/bin/changed");
  }
  for (const std::int32_t pid : {9, 3, 4, 5, 7, 7, 9}) EXPECT_EQ(find(pid), "/bin/p" + std::to_string(pid));
  EXPECT_EQ(paths.size(), 5U);
}

TEST_F(ProgramPathsTest, onlyLivingProcessesAreRemembered) {
  for (const std::int32_t pid : {3, 5, 7, 9}) {
    tree.program(pid, "/bin/p");
    find(pid);
  }
  keepOnly({1, 2, 5, 6, 9, 11});
  EXPECT_EQ(paths.size(), 2U);
  tree.program(5, "/bin/changed");
  tree.program(7, "/bin/changed");
  EXPECT_EQ(find(5), "/bin/p");
  EXPECT_EQ(find(7), "/bin/changed");
  EXPECT_EQ(find(9), "/bin/p");
  keepOnly({});
  EXPECT_EQ(paths.size(), 0U);
}

TEST_F(ProgramPathsTest, theMarkOfAReplacedFileIsRemovedFromThePath) {
  tree.program(7, "/usr/bin/upgraded (deleted)");
  EXPECT_EQ(find(7), "/usr/bin/upgraded");
}

TEST_F(ProgramPathsTest, aFileWhoseNameEndsLikeTheMarkKeepsIt) {
  tree.write("usr/bin/odd (deleted)", "");
  tree.program(7, "/usr/bin/odd (deleted)");
  EXPECT_EQ(find(7), "/usr/bin/odd (deleted)");
}

TEST_F(ProgramPathsTest, invalidBytesOfAPathAreRepaired) {
  tree.program(7, "/opt/caf\xe9/app");
  EXPECT_EQ(find(7), "/opt/caf\xef\xbf\xbd/app");
}

TEST_F(ProgramPathsTest, aFileInTheLinksPlaceIsNoPath) {
  tree.write("proc/7/exe", "text");
  tree.replaceByFIFO("proc/8/exe");
  EXPECT_EQ(find(7), "none");
  EXPECT_EQ(find(8), "none");
}

}  // namespace
}  // namespace vorli::linuxhost
