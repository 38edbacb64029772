#include "startup/StartupAppsView.h"
#include "tests/fakes/Publish.h"
#include "tests/startup/StartupAppsFixture.h"

#include <gtest/gtest.h>

namespace vorli {
namespace {

using Content = StartupAppsView::Content;
using Group = StartupAppsSection::Group;
using Strings = std::vector<std::string>;

struct StartupAppsViewTest : StartupAppsFixture {
  std::vector<std::string_view> headings() const {
    std::vector<std::string_view> result;
    for (const auto& section : view.sections()) result.push_back(section.heading);
    return result;
  }
};

TEST_F(StartupAppsViewTest, everyVisitScansAndEndsWithItsDate) {
  view.appear();
  EXPECT_TRUE(startup->isScanning.get());
  settle();
  EXPECT_FALSE(defaults.object("vorli.startup.lastSneakyVisitAt"));
  view.disappear();
  EXPECT_EQ(defaults.object("vorli.startup.lastSneakyVisitAt"), StoredValue(calendar.now()));
}

TEST_F(StartupAppsViewTest, rowsStayNewDuringOneVisit) {
  files.add(mine, "", calendar.now());
  view.appear();
  settle();
  startup->refresh();
  settle();
  EXPECT_TRUE(item("com.acme.agent").isNewSinceLastVisit);
  view.disappear();
  view.appear();
  settle();
  EXPECT_FALSE(item("com.acme.agent").isNewSinceLastVisit);
}

TEST_F(StartupAppsViewTest, contentFollowsTheScanUntilThereIsAList) {
  EXPECT_EQ(view.content(), Content::nothing);
  fakes::publish(startup->isScanning, true);
  EXPECT_EQ(view.content(), Content::looking);
  show({row("a")});
  EXPECT_EQ(view.content(), Content::list);
  fakes::publish(startup->isScanning, false);
  EXPECT_EQ(view.content(), Content::list);
}

TEST_F(StartupAppsViewTest, saysWhatThereIsToSayWithoutAList) {
  EXPECT_EQ(view.lookingText(), "Looking for apps running on your Mac…");
  EXPECT_EQ(view.nothingNotice(),
            (StartupAppsNotice{"sparkles", "Nothing to tidy",
                               "Nothing unusual is running in the background. Your Mac is in good shape."}));
}

TEST_F(StartupAppsViewTest, countsTheWholeListWhateverTheQuery) {
  EXPECT_EQ(view.searchField().countText(), "0 apps");
  show({row("a")});
  EXPECT_EQ(view.searchField().countText(), "1 app");
  show({row("a"), row("b"), leftover("c")});
  view.setSearchQuery("nobody");
  EXPECT_EQ(view.searchField().countText(), "3 apps, 1 leftover");
  EXPECT_EQ(view.searchField().query, "nobody");
  show({row("a"), leftover("b"), leftover("c")});
  EXPECT_EQ(view.searchField().countText(), "3 apps, 2 leftover");
}

TEST_F(StartupAppsViewTest, searchesNameDescriptionAndInstaller) {
  auto named = row("a");
  named.displayName = "Spotify";
  auto described = row("b");
  described.description = "Keeps your music in sync.";
  auto installed = row("c");
  installed.installerName = "Acme";
  show({named, described, installed});
  const std::pair<const char*, Strings> queries[] = {
      {"", {"a", "b", "c"}}, {"  \t", {"a", "b", "c"}}, {"SPOT", {"a"}}, {" music ", {"b"}},
      {"acme", {"c"}},       {"s", {"a", "b"}},         {"zzz", {}}};
  for (const auto& [query, expected] : queries) {
    view.setSearchQuery(query);
    EXPECT_EQ(shownIDs(), expected) << query;
  }
}

TEST_F(StartupAppsViewTest, groupsByWhatToDoAndKeepsTheListsOrder) {
  show({heavy("h1"), leftover("l1"), row("r1"), heavy("h2"), row("r2")});
  const auto sections = view.sections();
  ASSERT_EQ(sections.size(), 3u);
  EXPECT_EQ(sections[0].heading, "Worth a look");
  EXPECT_EQ(sections[1].heading, "Leftover · safe to remove");
  EXPECT_EQ(sections[2].heading, "Light footprint · no action needed");
  EXPECT_EQ(shownIDs(), (Strings{"h1", "h2", "l1", "r1", "r2"}));
  EXPECT_TRUE(sections[0].isFlaggedGroup);
  EXPECT_FALSE(sections[1].isFlaggedGroup);
  EXPECT_FALSE(sections[2].isFlaggedGroup);
}

TEST_F(StartupAppsViewTest, aHeavyLeftoverIsALeftover) {
  auto both = heavy("a");
  both.isLeftover = true;
  show({both});
  EXPECT_EQ(view.sections().at(0).group, Group::leftover);
}

TEST_F(StartupAppsViewTest, theFirstHeadingCarriesTheSortHint) {
  const auto hinted = [this] {
    std::vector<bool> result;
    for (const auto& section : view.sections()) result.push_back(section.showsSortHint);
    return result;
  };
  show({heavy("h"), leftover("l"), row("r")});
  EXPECT_EQ(hinted(), (std::vector<bool>{true, false, false}));
  show({leftover("l"), row("r")});
  EXPECT_EQ(hinted(), (std::vector<bool>{true, false}));
  show({row("r")});
  EXPECT_EQ(hinted(), std::vector<bool>{true});
  show({heavy("h"), leftover("l"), row("r")});
  view.setSearchQuery("l");
  EXPECT_EQ(headings(), std::vector<std::string_view>{"Leftover · safe to remove"});
  EXPECT_EQ(hinted(), std::vector<bool>{true});
  EXPECT_EQ(StartupAppsSection::sortHint, "HIGHEST USE FIRST");
}

TEST_F(StartupAppsViewTest, aQueryWithoutMatchesSaysSo) {
  show({row("a")});
  EXPECT_EQ(view.noMatches(), std::nullopt);
  view.setSearchQuery("zzz");
  EXPECT_EQ(view.noMatches(), (StartupAppsNotice{"magnifyingglass", "No matches",
                                                 "Try a shorter search, or clear it to see everything."}));
  EXPECT_TRUE(view.sections().empty());
  view.setSearchQuery("   ");
  EXPECT_EQ(view.noMatches(), std::nullopt);
}

TEST_F(StartupAppsViewTest, bannersSumUpLeftoversAndUpdaters) {
  show({leftover("a"), leftover("b"), updater("c")});
  const auto banners = view.banners();
  ASSERT_EQ(banners.size(), 2u);
  EXPECT_EQ(banners[0].symbol, "trash");
  EXPECT_EQ(banners[0].title, "2 leftover apps");
  EXPECT_EQ(banners[0].subtitle, "From software you've already removed. Safe to clean up.");
  EXPECT_EQ(banners[0].actions.at(0).label, "Remove all");
  EXPECT_EQ(banners[0].actions.at(0).accessibilityLabel, "Remove all 2 leftover apps");
  EXPECT_EQ(banners[0].actions.at(0).role, BulkBanner::Role::destructive);
  EXPECT_EQ(banners[1].symbol, "arrow.triangle.2.circlepath");
  EXPECT_EQ(banners[1].title, "1 updater running");
  EXPECT_EQ(banners[1].subtitle, "Most apps update fine without these. You can turn them back on later.");
  EXPECT_EQ(banners[1].actions.at(0).label, "Pause all");
  EXPECT_EQ(banners[1].actions.at(0).accessibilityLabel, "Pause all 1 updater");
  EXPECT_EQ(banners[1].actions.at(0).role, BulkBanner::Role::pauseAll);

  show({leftover("a"), updater("c"), updater("d")});
  EXPECT_EQ(view.banners().at(0).title, "1 leftover app");
  EXPECT_EQ(view.banners().at(1).title, "2 updaters running");
  EXPECT_EQ(view.banners().at(1).actions.at(0).accessibilityLabel, "Pause all 2 updaters");
}

TEST_F(StartupAppsViewTest, bannersAreLeftOutWhenEmptyOrSearching) {
  show({row("a")});
  EXPECT_TRUE(view.banners().empty());
  show({updater("a")});
  EXPECT_EQ(view.banners().size(), 1u);
  EXPECT_EQ(view.banners()[0].kind, BulkBanner::Kind::updater);
  view.setSearchQuery("a");
  EXPECT_TRUE(view.banners().empty());
  view.setSearchQuery("  ");
  EXPECT_EQ(view.banners().size(), 1u);
}

TEST_F(StartupAppsViewTest, bannersActOnAllOfThem) {
  files.add("/home/kim/Library/LaunchAgents/com.gone.plist", "/opt/gone");
  files.add("/home/kim/Library/LaunchAgents/org.mozilla.updater.plist");
  scan();
  for (const auto& banner : view.banners()) banner.actions.at(0).action();
  settle();
  EXPECT_EQ(paths(), (Strings{"/home/kim/Library/LaunchAgents/com.gone.plist.vorli-removed",
                              "/home/kim/Library/LaunchAgents/org.mozilla.updater.plist.vorli-disabled"}));
  EXPECT_EQ(startup->pendingUndo.get(), std::nullopt);
}

TEST_F(StartupAppsViewTest, theFooterCountsTheHiddenItems) {
  EXPECT_EQ(view.footer(), std::nullopt);
  fakes::publish(startup->hiddenSystemCount, 1);
  EXPECT_EQ(view.footer(),
            "Vorli hides 1 apps that macOS runs for itself. They're safe and you shouldn't turn them off.");
  fakes::publish(startup->hiddenSystemCount, 312);
  EXPECT_EQ(
      linuxView.footer(),
      "Vorli hides 312 apps that your system runs for itself. They're safe and you shouldn't turn them off.");
}

TEST_F(StartupAppsViewTest, reportsAChangeOnceATurn) {
  int changes = 0;
  const auto subscription = view.subscribeToContent([&](const auto&) { ++changes; });
  view.appear();
  settle();
  changes = 0;
  scan();
  EXPECT_GE(changes, 1);
  view.disappear();
  changes = 0;
  scan();
  EXPECT_EQ(changes, 0);
}

TEST_F(StartupAppsViewTest, theEndOfAVisitClearsQueryAndQuestion) {
  show({row("a", asking)});
  view.appear();
  view.press(row("a", asking), RowVerb::disable);
  view.setSearchQuery("a");
  view.disappear();
  EXPECT_EQ(view.searchField().query, "");
  EXPECT_FALSE(view.pendingConfirmation(row("a")));
}

}  // namespace
}  // namespace vorli
