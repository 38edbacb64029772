#include "startup/FolderListing.h"
#include "tests/fakes/StartupFiles.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace vorli {
namespace {

struct FolderListingTest : testing::Test {
  fakes::StartupFiles files;
  FolderListing folder{files, "/etc/units"};
};

TEST_F(FolderListingTest, listsTheFolderOnce) {
  files.add("/etc/units/b.service");
  files.add("/etc/units/a.service");
  EXPECT_TRUE(folder.mayHave("a.service"));
  EXPECT_FALSE(folder.mayHave("c.service"));
  EXPECT_EQ(folder.names(), (std::vector<std::string>{"a.service", "b.service"}));
  EXPECT_EQ(files.listings, std::vector<std::string>{"/etc/units"});
}

TEST_F(FolderListingTest, listsADanglingLink) {
  files.addLink("/etc/units/a.service", "/nowhere");
  EXPECT_TRUE(folder.has("a.service"));
  EXPECT_FALSE(folder.has("b.service"));
}

TEST_F(FolderListingTest, aFolderThatCannotBeListedIsAskedForEachName) {
  files.unlistable = {"/etc/units"};
  files.add("/etc/units/a.service");
  EXPECT_TRUE(folder.mayHave("a.service"));
  EXPECT_TRUE(folder.mayHave("b.service"));
  EXPECT_TRUE(folder.has("a.service"));
  EXPECT_FALSE(folder.has("b.service"));
  EXPECT_TRUE(folder.names().empty());
}

TEST_F(FolderListingTest, aMissingFolderIsEmpty) {
  files.unlistable = {"/etc/units"};
  EXPECT_FALSE(folder.mayHave("a.service"));
  EXPECT_FALSE(folder.has("a.service"));
}

}  // namespace
}  // namespace vorli
