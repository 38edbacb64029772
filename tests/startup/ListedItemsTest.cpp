#include "startup/ListedItems.h"
#include "tests/fakes/StartupFiles.h"
#include "tests/fakes/SystemStartupLists.h"

#include <gtest/gtest.h>
#include <vector>

namespace vorli {
namespace {

struct ListedItemsTest : testing::Test {
  fakes::SystemStartupLists lists;
  fakes::StartupFiles files;
  ListedItems items{lists, files, "/home/kim"};
};

TEST_F(ListedItemsTest, withoutListsThereIsNothing) {
  EXPECT_TRUE(items.candidates().empty());
}

TEST_F(ListedItemsTest, aCommandIsNamedAfterItsProgram) {
  files.add("/home/kim/bin/tea.sh");
  lists.table = "MAILTO=kim\n0 5 * * * /opt/nightly\n@reboot cd /tmp && ~/bin/tea.sh --quiet\n";
  const auto found = items.candidates();
  ASSERT_EQ(found.size(), 1u);
  EXPECT_EQ(found[0].identifier, "tea.sh@reboot");
  EXPECT_EQ(found[0].displayNameHint, "tea");
  EXPECT_EQ(found[0].programPath, "/home/kim/bin/tea.sh");
  EXPECT_EQ(found[0].plistURL, std::nullopt);
  EXPECT_EQ(found[0].source, StartupItem::Source::userLinked);
  EXPECT_TRUE(found[0].registersAtLogin);
  EXPECT_TRUE(found[0].isEnabled);
}

TEST_F(ListedItemsTest, aCommandWhoseProgramIsGoneHasNoPath) {
  lists.table = "@reboot /opt/gone\n";
  const auto found = items.candidates();
  ASSERT_EQ(found.size(), 1u);
  EXPECT_EQ(found[0].identifier, "gone@reboot");
  EXPECT_EQ(found[0].programPath, std::nullopt);
}

TEST_F(ListedItemsTest, aCommandWithoutAProgramIsIgnored) {
  lists.table = "@reboot\n@reboot   \n@reboot /\n@reboot A=1\n";
  EXPECT_TRUE(items.candidates().empty());
}

TEST_F(ListedItemsTest, aPermissionIsAnApplicationThatIsOnOrOff) {
  lists.permissions = {{"org.acme.Allowed", true}, {"org.acme.Forbidden", false}};
  const auto found = items.candidates();
  ASSERT_EQ(found.size(), 2u);
  EXPECT_EQ(found[0].identifier, "org.acme.Allowed");
  EXPECT_TRUE(found[0].isEnabled);
  EXPECT_FALSE(found[1].isEnabled);
  EXPECT_EQ(found[1].plistURL, std::nullopt);
}

TEST_F(ListedItemsTest, hidesItsOwnAndWhatTheSessionNeeds) {
  EXPECT_TRUE(items.hides({.identifier = "com.kv.vorli"}));
  EXPECT_TRUE(items.hides({.identifier = "xdg-desktop-portal"}));
  EXPECT_FALSE(items.hides({.identifier = "xdg-thing", .programPath = "/home/kim/bin/xdg-thing"}));
  EXPECT_FALSE(items.hides({.identifier = "org.acme.App"}));
}

}  // namespace
}  // namespace vorli
