#include "startup/EarlierFiles.h"
#include "tests/fakes/StartupFiles.h"

#include <gtest/gtest.h>
#include <string>

namespace vorli {
namespace {

struct EarlierFilesTest : testing::Test {
  void addNumbered(int count) {
    for (int number = 1; number <= count; ++number) files.add(path + "." + std::to_string(number));
  }

  fakes::StartupFiles files;
  const std::string path = "/home/kim/units/acme.service.vorli-disabled";
};

TEST_F(EarlierFilesTest, anEarlierFileTakesTheFirstFreeNumber) {
  files.add(path, "first");
  makeRoom(files, path);
  EXPECT_EQ(files.files.at(path + ".1").content, "first");
  files.add(path, "second");
  makeRoom(files, path);
  EXPECT_EQ(files.files.at(path + ".1").content, "first");
  EXPECT_EQ(files.files.at(path + ".2").content, "second");
  EXPECT_EQ(files.files.size(), 2u);
}

TEST_F(EarlierFilesTest, aFreeNameIsLeftAlone) {
  makeRoom(files, path);
  EXPECT_TRUE(files.files.empty());
}

TEST_F(EarlierFilesTest, afterAHundredFilesTheNextOneStays) {
  addNumbered(99);
  files.add(path, "the hundredth");
  makeRoom(files, path);
  EXPECT_EQ(files.files.at(path + ".100").content, "the hundredth");
  files.add(path, "one more");
  makeRoom(files, path);
  EXPECT_EQ(files.files.at(path).content, "one more");
}

TEST_F(EarlierFilesTest, aFileThatCannotBeMovedStays) {
  files.add(path, "first");
  files.locked = {"/home/"};
  makeRoom(files, path);
  EXPECT_EQ(files.files.at(path).content, "first");
}

}  // namespace
}  // namespace vorli
