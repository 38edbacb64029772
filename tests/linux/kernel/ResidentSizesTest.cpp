#include "linux/kernel/ResidentSizes.h"
#include "posix/FileDescriptor.h"
#include "tests/linux/RecordedTree.h"

#include <fcntl.h>
#include <gtest/gtest.h>

namespace vorli::linuxhost {
namespace {

struct ResidentSizesTest : testing::Test {
  void statm(std::int32_t pid, const std::string& text) {
    tree.write("proc/" + std::to_string(pid) + "/statm", text);
  }
  std::optional<std::uint64_t> read(std::int32_t pid) { return sizes.readPages(pid, folder.get()); }

  RecordedTree tree;
  posix::FileDescriptor folder{open(tree.path("proc").c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)};
  ResidentSizes sizes;
};

TEST_F(ResidentSizesTest, aFileIsKeptAsLongAsEveryPassAsksForIt) {
  statm(7, "9 5 1");
  EXPECT_EQ(read(7), 5U);
  sizes.beginPass();
  EXPECT_EQ(sizes.keptCount(), 1U);
  EXPECT_EQ(read(7), 5U);
  sizes.beginPass();
  EXPECT_EQ(sizes.keptCount(), 1U);
  sizes.beginPass();
  EXPECT_EQ(sizes.keptCount(), 0U);
  EXPECT_EQ(read(7), 5U);
}

TEST_F(ResidentSizesTest, unreadableFilesAreNotKept) {
  statm(7, "nonsense");
  tree.replaceByFIFO("proc/8/statm");
  tree.replaceByFolder("proc/9/statm");
  for (const std::int32_t pid : {6, 7, 8, 9}) EXPECT_FALSE(read(pid)) << pid;
  EXPECT_EQ(sizes.keptCount(), 0U);
}

TEST_F(ResidentSizesTest, theNumberOfKeptFilesIsLimitedAndTheOthersAreStillRead) {
  const auto most = static_cast<std::int32_t>(ResidentSizes::mostKept);
  for (std::int32_t pid = 1; pid <= most + 5; ++pid) {
    statm(pid, "900 " + std::to_string(pid) + " 1");
    EXPECT_EQ(read(pid), static_cast<std::uint64_t>(pid));
  }
  EXPECT_EQ(sizes.keptCount(), ResidentSizes::mostKept);
  EXPECT_EQ(read(most + 5), static_cast<std::uint64_t>(most + 5));
}

}  // namespace
}  // namespace vorli::linuxhost
