#include "ui/linux/DBusMenuModel.h"

#include <gtest/gtest.h>
#include <string>

namespace vorli::ui {
namespace {

using ports::MenuRow;

struct DBusMenuModelTest : testing::Test {
  DBusMenuModel model;
  std::string chosen;
  std::vector<MenuRow> rows{action("Polish Now"), separator(), action("Quit Vorli", "q")};

  MenuRow action(const std::string& title, const std::string& key = {}) {
    return {MenuRow::Kind::action, title, key, [this, title] { chosen += title; }};
  }
  static MenuRow separator() { return {MenuRow::Kind::separator, {}, {}, {}}; }

  void SetUp() override {
    model.setProvider([this] { return rows; });
    model.rebuild();
  }
  QList<int> childIds() const { return model.ids().mid(1); }
};

TEST_F(DBusMenuModelTest, theRootHoldsTheRowsInTheirOrder) {
  const auto root = model.layout(0, -1, {});
  ASSERT_TRUE(root);
  EXPECT_EQ(root->properties.value("children-display"), "submenu");
  ASSERT_EQ(root->children.size(), 3);
  EXPECT_EQ(root->children[0].properties.value("label"), "Polish Now");
  EXPECT_EQ(root->children[1].properties.value("type"), "separator");
  EXPECT_EQ(root->children[2].properties.value("label"), "Quit Vorli");
}

TEST_F(DBusMenuModelTest, aKeyIsShownWithControl) {
  const auto shortcut = model.properties(childIds()[2], {"shortcut"}).value("shortcut");
  EXPECT_EQ(shortcut.value<QList<QStringList>>(), (QList<QStringList>{{"Control", "q"}}));
  EXPECT_FALSE(model.properties(childIds()[0], {}).contains("shortcut"));
}

TEST_F(DBusMenuModelTest, depthAndNamesLimitTheAnswer) {
  EXPECT_TRUE(model.layout(0, 0, {})->children.isEmpty());
  const auto root = model.layout(0, 1, {"label"});
  EXPECT_TRUE(root->properties.isEmpty());
  EXPECT_EQ(root->children[0].properties, (QVariantMap{{"label", "Polish Now"}}));
  EXPECT_TRUE(model.layout(childIds()[0], -1, {})->children.isEmpty());
}

TEST_F(DBusMenuModelTest, unknownItemsHaveNothing) {
  EXPECT_FALSE(model.layout(4711, -1, {}));
  EXPECT_FALSE(model.contains(-1));
  EXPECT_TRUE(model.properties(4711, {}).isEmpty());
  EXPECT_FALSE(model.actionOf(4711));
  EXPECT_FALSE(model.actionOf(0));
  EXPECT_FALSE(model.actionOf(childIds()[1]));  // a separator
}

TEST_F(DBusMenuModelTest, rowsThatLookTheSameKeepNumbersAndRevision) {
  const auto ids = model.ids();
  rows[0].action = [this] { chosen = "the new action"; };
  EXPECT_FALSE(model.rebuild());
  EXPECT_EQ(model.ids(), ids);
  EXPECT_EQ(model.revision(), 1u);
  model.actionOf(ids[1])();
  EXPECT_EQ(chosen, "the new action");
}

TEST_F(DBusMenuModelTest, changedRowsGetNewNumbersSoThatALateClickHitsNothing) {
  const auto before = childIds();
  rows.insert(rows.begin(), action("Check for Updates…"));
  EXPECT_TRUE(model.rebuild());
  EXPECT_EQ(model.revision(), 2u);
  for (const int id : before) EXPECT_FALSE(model.contains(id));
  model.actionOf(childIds()[0])();
  EXPECT_EQ(chosen, "Check for Updates…");
}

TEST_F(DBusMenuModelTest, anUnderscoreMarksNoAccessKey) {
  rows = {action("snake_case")};
  model.rebuild();
  EXPECT_EQ(model.properties(childIds()[0], {"label"}).value("label"), "snake__case");
}

TEST_F(DBusMenuModelTest, aRowWithoutActionIsDisabled) {
  rows = {{MenuRow::Kind::action, "Nothing", {}, {}}};
  model.rebuild();
  EXPECT_EQ(model.properties(childIds()[0], {}).value("enabled"), false);
}

TEST_F(DBusMenuModelTest, withoutAProviderThereAreNoRows) {
  DBusMenuModel empty;
  EXPECT_TRUE(empty.rebuild());
  EXPECT_EQ(empty.ids(), QList<int>{0});
  EXPECT_EQ(empty.revision(), 1u);
}

}  // namespace
}  // namespace vorli::ui
