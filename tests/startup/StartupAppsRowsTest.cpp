#include "startup/StartupAppsView.h"
#include "tests/startup/StartupAppsFixture.h"

#include <gtest/gtest.h>

namespace vorli {
namespace {

using Strings = std::vector<std::string>;

struct StartupAppsRowsTest : StartupAppsFixture {
  StartupAppsRowsTest() {
    files.add("/home/kim/Library/LaunchAgents/a.plist");
    view.appear();
    settle();
  }
  bool isPaused() { return files.exists("/home/kim/Library/LaunchAgents/a.plist.vorli-disabled"); }
  bool isRemoved() { return files.exists("/home/kim/Library/LaunchAgents/a.plist.vorli-removed"); }
  StartupAppsSection flagged(const StartupItem& each) const {
    StartupAppsSection section;
    section.isFlaggedGroup = true;
    section.items = {each};
    return section;
  }
};

TEST_F(StartupAppsRowsTest, aPressActsAtOnce) {
  view.press(row("a"), RowVerb::disable);
  EXPECT_EQ(startup->pendingUndo->value().kind, UndoAction::Kind::paused);
  settle();
  EXPECT_TRUE(isPaused());
  view.press(item("a"), RowVerb::enable);
  settle();
  EXPECT_FALSE(isPaused());
}

TEST_F(StartupAppsRowsTest, anImportantItemAsksFirst) {
  for (const auto& [verb, title, label] : {std::tuple(RowVerb::disable, "Disable a?", "Disable"),
                                           {RowVerb::remove, "Remove a?", "Remove"},
                                           {RowVerb::quit, "Quit a?", "Quit"}}) {
    view.press(row("a", asking), verb);
    const auto question = view.pendingConfirmation(row("a"));
    ASSERT_TRUE(question);
    EXPECT_EQ(question->title, title);
    EXPECT_EQ(question->actionLabel, label);
    EXPECT_EQ(question->message,
              "This app might be doing something important. You can turn it back on any time.");
    view.confirmationCancelled(row("a"));
    EXPECT_FALSE(view.pendingConfirmation(row("a")));
  }
  settle();
  EXPECT_FALSE(isPaused() || isRemoved());
  EXPECT_EQ(RowConfirmation::cancelLabel, "Cancel");
}

TEST_F(StartupAppsRowsTest, theAnswerActsAndEndsTheQuestion) {
  view.press(row("a", asking), RowVerb::remove);
  view.pendingConfirmation(row("a"))->action();
  EXPECT_FALSE(view.pendingConfirmation(row("a")));
  EXPECT_EQ(startup->pendingUndo->value().kind, UndoAction::Kind::removed);
  settle();
  EXPECT_TRUE(isRemoved());
}

TEST_F(StartupAppsRowsTest, enableNeverAsks) {
  files.add("/home/kim/Library/LaunchAgents/b.plist.vorli-disabled");
  auto paused = row("b", asking);
  paused.isEnabled = false;
  view.press(paused, RowVerb::enable);
  EXPECT_FALSE(view.pendingConfirmation(paused));
  settle();
  EXPECT_TRUE(files.exists("/home/kim/Library/LaunchAgents/b.plist"));
  EXPECT_EQ(startup->pendingUndo.get(), std::nullopt);
}

TEST_F(StartupAppsRowsTest, aQuestionDisappearsWithItsRow) {
  view.press(row("a", asking), RowVerb::disable);
  show({row("b")});
  EXPECT_FALSE(view.pendingConfirmation(row("a")));
}

TEST_F(StartupAppsRowsTest, aRemovalMovesTheListByItsAnimation) {
  std::vector<std::optional<Animation>> animations;
  const auto subscription =
      view.subscribeToContent([&](const auto& animation) { animations.push_back(animation); });
  view.press(row("a"), RowVerb::remove);
  scheduler.runReady();
  ASSERT_FALSE(animations.empty());
  EXPECT_EQ(animations.front(), Animation::easeOut(0.22));
  animations.clear();
  settle();
  for (const auto& each : animations) EXPECT_EQ(each, std::nullopt);
}

TEST_F(StartupAppsRowsTest, anImpossibleRemovalAnimatesNoLaterChange) {
  auto withoutFile = leftover("a");
  withoutFile.plistURL.reset();
  view.press(withoutFile, RowVerb::remove);
  std::vector<std::optional<Animation>> animations;
  const auto subscription =
      view.subscribeToContent([&](const auto& animation) { animations.push_back(animation); });
  show({row("b")});
  ASSERT_FALSE(animations.empty());
  for (const auto& each : animations) EXPECT_EQ(each, std::nullopt);
}

TEST_F(StartupAppsRowsTest, onlyAnEnabledHeavyRowHasACallout) {
  EXPECT_TRUE(view.callout(flagged(heavy("a")), heavy("a")));
  EXPECT_FALSE(view.callout(StartupAppsSection(), heavy("a")));
  auto paused = heavy("a");
  paused.isEnabled = false;
  EXPECT_FALSE(view.callout(flagged(paused), paused));
  auto gone = heavy("a");
  gone.isLeftover = true;
  EXPECT_FALSE(view.callout(flagged(gone), gone));
}

TEST_F(StartupAppsRowsTest, theCalloutPausesAndHides) {
  const auto callout = view.callout(flagged(heavy("a")), heavy("a"));
  EXPECT_EQ(callout->heading, "This one is holding a lot in the background.");
  EXPECT_EQ(callout->buttons[0].title, "Pause it");
  EXPECT_EQ(callout->buttons[0].style, CalloutButton::Style::primary);
  callout->buttons[0].action();
  EXPECT_FALSE(view.callout(flagged(heavy("a")), heavy("a")));
  EXPECT_EQ(startup->pendingUndo->value().kind, UndoAction::Kind::paused);
  settle();
  EXPECT_TRUE(isPaused());
}

TEST_F(StartupAppsRowsTest, theCalloutKeptAwayIsBackWithTheNextVisit) {
  const auto callout = view.callout(flagged(heavy("a")), heavy("a"));
  EXPECT_EQ(callout->buttons[1].title, "Keep it on");
  EXPECT_EQ(callout->buttons[1].style, CalloutButton::Style::secondary);
  callout->buttons[1].action();
  EXPECT_FALSE(view.callout(flagged(heavy("a")), heavy("a")));
  EXPECT_TRUE(view.callout(flagged(heavy("b")), heavy("b")));
  settle();
  EXPECT_FALSE(isPaused());
  EXPECT_FALSE(view.callout(flagged(heavy("a")), heavy("a")));
  view.disappear();
  view.appear();
  EXPECT_TRUE(view.callout(flagged(heavy("a")), heavy("a")));
}

TEST_F(StartupAppsRowsTest, quitAsksTheApplication) {
  workspace.add(1, SharedText("A"), SharedText("a"));
  auto running = row("a");
  running.runningAppBundleID = "a";
  view.press(running, RowVerb::quit);
  EXPECT_EQ(workspace.terminated, std::vector<std::int32_t>{1});
}

}  // namespace
}  // namespace vorli
