#include "ui/windows/StartupAppsLayout.h"

#include <gtest/gtest.h>

namespace vorli::ui {
namespace {

using Place = StartupAppsLayout::RowPlace;
using Row = StartupAppsShape::Row;

StartupAppsShape twoSections() {
  return {
      .banners = {60.0, 60.0}, .sections = {{{Row{84.0, 128.0}, Row{102.0}}}, {{Row{84.0}}}}, .footer = 18.0};
}

TEST(StartupAppRowLayoutTest, aRowIsAsHighAsItsTextsNeed) {
  EXPECT_EQ(StartupAppRowLayout::of({18.0, 18.0, 16.0}, 120.0).height, 84.0);
  EXPECT_EQ(StartupAppRowLayout::of({18.0, 36.0, 16.0}, 120.0).height, 102.0);
  EXPECT_EQ(StartupAppRowLayout::of({36.0, 54.0, 20.0}, 120.0).height, 142.0);
}

TEST(StartupAppRowLayoutTest, theColumnsAreSideBySide) {
  const auto row = StartupAppRowLayout::of({18.0, 36.0, 16.0}, 130.0);
  EXPECT_EQ(row.icon, QRectF(16.0, 15.0, 40.0, 40.0));
  EXPECT_EQ(row.name, QRectF(70.0, 14.0, 370.0, 18.0));
  EXPECT_EQ(row.description, QRectF(70.0, 33.0, 370.0, 36.0));
  EXPECT_EQ(row.meta, QRectF(70.0, 72.0, 514.0, 16.0));  // below the buttons too
}

TEST(StartupAppRowLayoutTest, aPanelHoldsHeadingBodyAndButtons) {
  EXPECT_EQ(StartupAppRowLayout::panelHeight(1), 110.0);
  EXPECT_EQ(StartupAppRowLayout::panelHeight(2), 128.0);
}

TEST(StartupAppsLayoutTest, theListBeginsWithTheSearchField) {
  EXPECT_EQ(StartupAppsLayout({}).search(), QRectF(32.0, 12.0, 600.0, 36.0));
  EXPECT_EQ(StartupAppsLayout({}).height(), 76.0);
}

TEST(StartupAppsLayoutTest, bannersFollowTheSearchField) {
  const StartupAppsLayout layout(twoSections());
  EXPECT_EQ(layout.banner(0), QRectF(32.0, 60.0, 600.0, 60.0));
  EXPECT_EQ(layout.banner(1), QRectF(32.0, 128.0, 600.0, 60.0));
  EXPECT_EQ(layout.heading(0).top(), 208.0);
}

TEST(StartupAppsLayoutTest, withoutBannersTheFirstHeadingFollowsTheSearchField) {
  const StartupAppsLayout layout({.banners = {}, .sections = {{{Row{84.0}}}}});
  EXPECT_EQ(layout.heading(0), QRectF(32.0, 68.0, 600.0, 20.0));
  EXPECT_EQ(layout.card(0), QRectF(32.0, 96.0, 600.0, 84.0));
  EXPECT_EQ(layout.height(), 208.0);
}

TEST(StartupAppsLayoutTest, aPanelPushesTheRowsBelowItDown) {
  const StartupAppsLayout layout(twoSections());
  EXPECT_EQ(layout.card(0).top(), 236.0);
  EXPECT_EQ(layout.row({0, 0}), QRectF(32.0, 236.0, 600.0, 84.0));
  EXPECT_EQ(layout.panel({0, 0}), QRectF(102.0, 320.0, 514.0, 128.0));
  EXPECT_EQ(layout.block({0, 0}), QRectF(32.0, 236.0, 600.0, 226.0));
  EXPECT_EQ(layout.row({0, 1}).top(), 462.0);
  EXPECT_TRUE(layout.panel({0, 1}).isEmpty());
  EXPECT_EQ(layout.card(0).bottom(), 564.0);
  EXPECT_EQ(layout.heading(1).top(), 584.0);
  EXPECT_EQ(layout.footer(), QRectF(32.0, 716.0, 600.0, 18.0));
  EXPECT_EQ(layout.height(), 762.0);
}

TEST(StartupAppsLayoutTest, withoutSectionsTheFooterIsAtTheBottomOfTheWindow) {
  StartupAppsShape shape{.banners = {}, .sections = {}, .footer = 18.0, .toastRoom = 60.0, .visible = 504.0};
  EXPECT_EQ(StartupAppsLayout(shape).footer(), QRectF(32.0, 398.0, 600.0, 18.0));
  EXPECT_EQ(StartupAppsLayout(shape).height(), 504.0);
  shape.visible = 100.0;
  EXPECT_EQ(StartupAppsLayout(shape).footer().top(), 68.0);
}

TEST(StartupAppsLayoutTest, removingARowRemovesItsPanel) {
  auto shape = twoSections();
  shape.sections[0].rows[0].shown = 0.5;
  const StartupAppsLayout half(shape);
  EXPECT_EQ(half.row({0, 0}).height(), 42.0);
  EXPECT_EQ(half.row({0, 1}).top(), 236.0 + 113.0);
  shape.sections[0].rows[0].shown = 0.0;
  EXPECT_EQ(StartupAppsLayout(shape).row({0, 1}).top(), 236.0);
}

TEST(StartupAppsLayoutTest, removingAPanelKeepsItsRow) {
  auto shape = twoSections();
  shape.sections[0].rows[0].panelShown = 0.5;
  const StartupAppsLayout layout(shape);
  EXPECT_EQ(layout.row({0, 0}).height(), 84.0);
  EXPECT_EQ(layout.panel({0, 0}).height(), 64.0);
  EXPECT_EQ(layout.row({0, 1}).top(), 236.0 + 84.0 + 71.0);
}

TEST(StartupAppsLayoutTest, toastsMakeRoomBehindTheList) {
  auto shape = twoSections();
  shape.toastRoom = StartupAppsMetrics::oneToast;
  EXPECT_EQ(StartupAppsLayout(shape).height(), 834.0);
}

TEST(StartupAppsLayoutTest, findsTheRowsOfAStretch) {
  const StartupAppsLayout layout(twoSections());
  EXPECT_EQ(layout.rowsBetween(0.0, 236.0), std::vector<Place>{});
  EXPECT_EQ(layout.rowsBetween(0.0, 236.1), (std::vector<Place>{{0, 0}}));
  EXPECT_EQ(layout.rowsBetween(462.0, 564.0), (std::vector<Place>{{0, 1}}));
  EXPECT_EQ(layout.rowsBetween(461.9, 700.0), (std::vector<Place>{{0, 0}, {0, 1}, {1, 0}}));
  EXPECT_EQ(layout.rowsBetween(565.0, 612.0), std::vector<Place>{});
}

TEST(StartupAppsLayoutTest, onlyTheRowsInSightAreFoundAmongAThousand) {
  StartupAppsShape shape;
  shape.sections = {{std::vector<Row>(1000, Row{84.0})}};
  const StartupAppsLayout layout(shape);
  EXPECT_EQ(layout.card(0).height(), 84'000.0);
  const auto found = layout.rowsBetween(96.0 + 84.0 * 500.0, 96.0 + 84.0 * 506.0);
  ASSERT_EQ(found.size(), 6u);
  EXPECT_EQ(found.front(), (Place{0, 500}));
  EXPECT_EQ(found.back(), (Place{0, 505}));
}

}  // namespace
}  // namespace vorli::ui
