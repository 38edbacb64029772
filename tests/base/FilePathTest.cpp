#include "base/FilePath.h"

#include <gtest/gtest.h>

namespace vorli {
namespace {

TEST(FilePathTest, lastComponentIgnoresSlashesAtTheEnd) {
  EXPECT_EQ(lastPathComponent("/a/b.plist"), "b.plist");
  EXPECT_EQ(lastPathComponent("/a/B.app//"), "B.app");
  EXPECT_EQ(lastPathComponent("/"), "/");
  EXPECT_EQ(lastPathComponent("b"), "b");
}

TEST(FilePathTest, extensionIsWhatFollowsTheLastDot) {
  EXPECT_EQ(pathExtension("/a/b.plist"), "plist");
  EXPECT_EQ(pathExtension("/a/b.plist.vorli-disabled"), "vorli-disabled");
  EXPECT_EQ(pathExtension("/a/B.app/"), "app");
  EXPECT_EQ(pathExtension("/a.d/b"), "");
  EXPECT_EQ(pathExtension("/a/.plist"), "");
  EXPECT_EQ(pathExtension("/a/b."), "");
}

TEST(FilePathTest, extensionIsTakenOffWithItsDot) {
  EXPECT_EQ(deletingPathExtension("/a/b.plist.vorli-disabled"), "/a/b.plist");
  EXPECT_EQ(deletingPathExtension("/a.d/b"), "/a.d/b");
  EXPECT_EQ(deletingPathExtension("/a/.plist"), "/a/.plist");
  EXPECT_EQ(fileStem("/a/com.acme.agent.plist"), "com.acme.agent");
  EXPECT_EQ(fileStem("/a/Acme.app/"), "Acme");
}

TEST(FilePathTest, nameAndLongerPathAreTextsOfTheirOwn) {
  EXPECT_EQ(fileName("/a/b.plist/"), "b.plist");
  EXPECT_EQ(withExtension("/a/b.plist", ".vorli-disabled"), "/a/b.plist.vorli-disabled");
}

TEST(FilePathTest, parentOfTheRootIsTheRoot) {
  EXPECT_EQ(parentPath("/a/b"), "/a");
  EXPECT_EQ(parentPath("/a//b/"), "/a");
  EXPECT_EQ(parentPath("/a"), "/");
  EXPECT_EQ(parentPath("/"), "/");
}

TEST(FilePathTest, onlyAbsolutePathsBelowTheRootHaveTwoComponents) {
  EXPECT_TRUE(hasTwoComponents("/a"));
  EXPECT_FALSE(hasTwoComponents("/"));
  EXPECT_FALSE(hasTwoComponents("//"));
  EXPECT_FALSE(hasTwoComponents("a/b"));
  EXPECT_FALSE(hasTwoComponents(""));
}

}  // namespace
}  // namespace vorli
