#include "linux/kernel/KeptFile.h"
#include "tests/linux/RecordedTree.h"

#include <array>
#include <gtest/gtest.h>

namespace vorli::linuxhost {
namespace {

struct KeptFileTest : testing::Test {
  std::optional<std::string_view> read() { return file.read(buffer); }

  RecordedTree tree;
  KeptFile file{tree.root() + "/proc/file"};
  std::array<char, 8192> buffer;
};

TEST_F(KeptFileTest, followsAFileThatIsRewritten) {
  tree.write("proc/file", "first and long");
  EXPECT_EQ(read(), "first and long");
  tree.write("proc/file", "second");
  EXPECT_EQ(read(), "second");
}

TEST_F(KeptFileTest, aFileThatIsNotThereIsTriedAgain) {
  EXPECT_FALSE(read());
  tree.write("proc/file", "here");
  EXPECT_EQ(read(), "here");
}

TEST_F(KeptFileTest, aLongFileIsReadToTheEndOrToTheBuffersEnd) {
  tree.write("proc/file", std::string(5000, 'a') + "b");
  EXPECT_EQ(read()->size(), 5001U);
  EXPECT_EQ(read()->back(), 'b');
  tree.write("proc/file", std::string(9000, 'c'));
  EXPECT_EQ(read()->size(), buffer.size());
}

TEST_F(KeptFileTest, anEmptyFileIsAnEmptyText) {
  tree.write("proc/file", "");
  EXPECT_EQ(read(), "");
}

TEST_F(KeptFileTest, aFolderOrAFIFOIsRefusedWithoutWaiting) {
  tree.replaceByFolder("proc/file");
  EXPECT_FALSE(read());
  tree.replaceByFIFO("proc/file");
  EXPECT_FALSE(read());
  tree.remove("proc/file");
  tree.write("proc/file", "a file again");
  EXPECT_EQ(read(), "a file again");
}

TEST(KeptFileLiveTest, theKernelsFilesBeginAnewAtEachReading) {
  std::array<char, 8192> buffer;
  KeptFile memInfo("/proc/meminfo");
  for (int reading = 0; reading < 3; ++reading) {
    EXPECT_TRUE(memInfo.read(buffer).value_or("").starts_with("MemTotal:"));
  }
}

}  // namespace
}  // namespace vorli::linuxhost
