#include "base/Animation.h"
#include "tests/fakes/Publish.h"
#include "tests/polish/PolishFixture.h"

#include <tuple>
#include <utility>

namespace vorli {
namespace {

constexpr auto entryWhileReleasing = "handleTap entered (isReleasing=true ";

struct PolishFlowTest : PolishFixture {
  const std::optional<std::string>& sentence() const { return view->postClearSentence.get(); }
};

TEST_F(PolishFlowTest, aPressOnACalmRingLeavesOnlyTheEntryLine) {
  fakes::publish(view->animatedProgress, 0.3);
  fakes::publish(view->animatedState, RingState::healthy);
  press();
  scheduler.advance(20.0);
  EXPECT_EQ(popoverLines(),
            std::vector<std::string>{"handleTap entered (isReleasing=false state=healthy progress=0.30 "
                                     "helperStatus=Enabled)"});
  EXPECT_FALSE(view->isReleasing);
  EXPECT_EQ(view->animatedProgress, 0.3);
  EXPECT_EQ(view->auroraClearTrigger.get(), 0);
  EXPECT_TRUE(tap.windows.empty());
  EXPECT_TRUE(haptics.taps.empty());
  EXPECT_TRUE(transport.requests.empty());
  EXPECT_EQ(closes, 0);
}

TEST_F(PolishFlowTest, aPressOnACalmRingWithTheHelperAwayDoesNothingThoughTheToolTipNamesTheHelper) {
  fakes::publish(view->animatedState, RingState::healthy);
  setHelperStatus(2);
  press();
  EXPECT_EQ(popoverLines().size(), 1u);
  EXPECT_EQ(sentence(), std::nullopt);
  EXPECT_EQ(view->polishToolTip(),
            "Background helper isn't ready. Open Settings, then General, then Login Items to approve Vorli.");
}

TEST_F(PolishFlowTest, aWarmingRingIsPolishedToo) {
  fakes::publish(view->animatedProgress, 0.55);
  fakes::publish(view->animatedState, RingState::warming);
  press();
  EXPECT_TRUE(view->isReleasing);
  EXPECT_EQ(popoverLines().at(0),
            "handleTap entered (isReleasing=false state=warming progress=0.55 helperStatus=Enabled)");
}

TEST_F(PolishFlowTest, aSecondPressDuringAnyStageLeavesOnlyTheEntryLine) {
  const auto flow = press();
  for (const double stage : {0.0, 1.0, 2.65, 3.0, 3.25, 5.0, 5.65, 8.0, 10.65, 12.0, 13.55, 15.0}) {
    goTo(stage + rounding);
    ASSERT_TRUE(view->isReleasing) << stage;
    const auto lines = popoverLines().size();
    const auto before = std::tuple(view->statusSentence(), view->animatedProgress.model(),
                                   view->animatedState.get(), view->celebrationScale.model(), closes);
    view->polishPressed();
    scheduler.runReady();
    ASSERT_EQ(popoverLines().size(), lines + 1) << stage;
    EXPECT_TRUE(popoverLines().back().starts_with(entryWhileReleasing)) << popoverLines().back();
    EXPECT_EQ(before, std::tuple(view->statusSentence(), view->animatedProgress.model(),
                                 view->animatedState.get(), view->celebrationScale.model(), closes))
        << stage;
  }
  EXPECT_EQ(view->auroraClearTrigger.get(), 1);
  EXPECT_EQ(tap.windows.size(), 1u);
  EXPECT_EQ(haptics.taps.size(), 1u);
  EXPECT_EQ(transport.requests.size(), 2u);
  EXPECT_TRUE(flow.isRunning());
  goTo(15.05 + rounding);
  EXPECT_FALSE(view->isReleasing);
  EXPECT_FALSE(flow.isRunning());
}

TEST_F(PolishFlowTest, aPressQueuedBehindAnotherStartsNothing) {
  view->polishPressed();
  view->polishPressed();
  scheduler.runReady();
  EXPECT_EQ(view->auroraClearTrigger.get(), 1);
  const auto lines = popoverLines();
  EXPECT_TRUE(lines.at(0).starts_with("handleTap entered (isReleasing=false"));
  EXPECT_TRUE(lines.at(2).starts_with(entryWhileReleasing));
}

TEST_F(PolishFlowTest, afterTheEndTheNextPressPolishesAgain) {
  press();
  goTo(15.05 + rounding);
  press();
  EXPECT_TRUE(view->isReleasing);
  EXPECT_EQ(view->auroraClearTrigger.get(), 2);
  EXPECT_EQ(transport.purgeMemory.requests, 2);
  goTo(2.65 + rounding);
  EXPECT_EQ(sentence(), "Now, your Mac has room to breathe.");
}

TEST_F(PolishFlowTest, theCeremonyTapsOnceIfTheSettingIsOn) {
  press();
  EXPECT_EQ(haptics.taps,
            (std::vector{std::pair(ports::FeedbackPattern::generic, ports::PerformanceTime::now)}));
}

TEST_F(PolishFlowTest, theCeremonyDoesNotTapWhenTheSettingIsOff) {
  settings.hapticFeedback.set(false);
  press();
  EXPECT_TRUE(haptics.taps.empty());
  EXPECT_EQ(view->auroraClearTrigger.get(), 1);
}

TEST_F(PolishFlowTest, theGlowComesInTheColourThatTheRingHad) {
  fakes::publish(view->animatedProgress, 0.9);
  press();
  EXPECT_EQ(overlay.pictureAt(startedAt).colour, (Colour{0.902, 0.235, 0.157}));
  EXPECT_EQ(overlay.pictureAt(startedAt + 0.4).opacity, 0.55);
}

TEST_F(PolishFlowTest, theGlowOfARingThatIsMovingComesInTheColourThatIsShown) {
  fakes::publish(view->animatedProgress, 0.56);
  withAnimation(Animation::easeInOut(0.6), [this] { fakes::publish(view->animatedProgress, 0.9); });
  press();
  EXPECT_EQ(overlay.pictureAt(startedAt).colour, (Colour{0.949, 0.769, 0.165}));
}

TEST_F(PolishFlowTest, hiddenAppsAreAskedToQuitOnlyWhenTheSettingIsOn) {
  workspace.add(7, SharedText("Notes"), SharedText("org.example.notes"));
  press();
  EXPECT_EQ(workspace.windowLooks, 0);
  goTo(15.05 + rounding);

  settings.quitHiddenAppsOnClear.set(true);
  press();
  EXPECT_EQ(workspace.terminated, std::vector<std::int32_t>{7});
  goTo(15.05 + rounding);
  EXPECT_EQ(workspace.terminated.size(), 1u);
}

TEST_F(PolishFlowTest, playingSoundSparesThePurgeAndKeepsTheFullTimes) {
  tap.play({0.5F});
  press();
  EXPECT_EQ(transport.requests, std::vector<std::string>{"flushDNS"});
  EXPECT_EQ(popoverLines().at(1), "handleTap: setting isReleasing=true. helperReady=true audioActive=true");
  EXPECT_EQ(popoverLines().at(2), "handleTap: audio active — purge will be skipped");
  setUsedPages(500'000);
  goTo(2.65 + rounding);
  EXPECT_EQ(sentence(), "A gentle tidy. Held off the deep polish so your audio stays smooth.");
  EXPECT_EQ(view->postClearPercentage.get(), std::nullopt);
  goBefore(15.05);
  EXPECT_TRUE(view->isReleasing);
  goTo(15.05 + rounding);
  EXPECT_FALSE(view->isReleasing);
  EXPECT_EQ(transport.purgeMemory.requests, 0);
}

TEST_F(PolishFlowTest, theProbeListensAlsoWhenTheHelperIsAway) {
  setHelperStatus(0);
  tap.play({0.5F});
  press();
  EXPECT_EQ(tap.windows, std::vector{0.15});
  EXPECT_EQ(popoverLines().at(1), "handleTap: setting isReleasing=true. helperReady=false audioActive=true");
  EXPECT_EQ(popoverLines().at(2), "handleTap: audio active — purge will be skipped");
  goTo(1.3 + rounding);
  EXPECT_EQ(sentence(), "A gentle tidy. Approve Vorli in Login Items for a full polish.");
}

struct SentenceCase {
  bool helperReady, reachable, audioActive;
  std::string_view sentence;
  std::optional<int> percentage;
};

struct PolishSentenceTest : PolishFlowTest, testing::WithParamInterface<SentenceCase> {};

TEST_P(PolishSentenceTest, dependsOnTheHelperTheCallAndTheAudio) {
  const auto& row = GetParam();
  if (!row.helperReady) setHelperStatus(0);
  if (!row.reachable) transport.purgeMemory.answer = {-1, "Helper purgeMemory timed out"};
  if (row.audioActive) tap.play({0.5F});
  press();
  setUsedPages(750'000);
  goTo(3.0);
  EXPECT_EQ(sentence(), row.sentence);
  EXPECT_EQ(view->postClearPercentage.get(), row.percentage);
}

constexpr auto approve = "A gentle tidy. Approve Vorli in Login Items for a full polish.";

// A purge that is skipped cannot fail, so one row of the table is impossible.
INSTANTIATE_TEST_SUITE_P(
    EveryRow, PolishSentenceTest,
    testing::Values(
        SentenceCase{false, false, false, approve, {}}, SentenceCase{false, true, false, approve, {}},
        SentenceCase{false, false, true, approve, {}}, SentenceCase{false, true, true, approve, {}},
        SentenceCase{true, false, false, "A gentle tidy. Couldn't reach the helper for a full polish.", {}},
        SentenceCase{
            true, true, true, "A gentle tidy. Held off the deep polish so your audio stays smooth.", {}},
        SentenceCase{true, true, false, "Now, your Mac has room to breathe.", 25}));

TEST_F(PolishFlowTest, everyStatusButEnabledIsAGentleTidy) {
  for (const int status : {0, 2, 3, 7}) {
    setHelperStatus(status);
    press();
    EXPECT_EQ(sentence(), approve) << status;
    goTo(6.5 + rounding);
    EXPECT_FALSE(view->isReleasing) << status;
    EXPECT_EQ(sentence(), std::nullopt);
  }
  EXPECT_TRUE(transport.requests.empty());
}

TEST_F(PolishFlowTest, theStatusAtThePressDecidesForTheWholePolish) {
  press();
  setHelperStatus(0);
  goTo(2.65 + rounding);
  EXPECT_EQ(sentence(), "Now, your Mac has room to breathe.");
  goBefore(15.05);
  EXPECT_TRUE(view->isReleasing);
}

TEST_F(PolishFlowTest, theStatusIsReadBeforeTheProbe) {
  tap.duringWindow = [this](double) { setHelperStatus(0); };
  press();
  EXPECT_EQ(sentence(), std::nullopt);
  EXPECT_EQ(popoverLines().at(1), "handleTap: setting isReleasing=true. helperReady=true audioActive=false");
}

TEST_F(PolishFlowTest, aCallThatFindsNoProxyGivesTheSentenceAboutTheHelper) {
  transport.leadsToDaemon = false;
  press();
  goBefore(2.65);
  EXPECT_EQ(sentence(), std::nullopt);
  goTo(2.65 + rounding);
  EXPECT_EQ(sentence(), "A gentle tidy. Couldn't reach the helper for a full polish.");
  EXPECT_EQ(view->postClearPercentage.get(), std::nullopt);
  goBefore(15.05);
  EXPECT_TRUE(view->isReleasing);
}

TEST_F(PolishFlowTest, aPurgeStillOutAtTheEndOfTheBudgetCountsAsASuccess) {
  transport.purgeMemory.conduct = Conduct::silent;
  press();
  goTo(2.65 + rounding);
  EXPECT_EQ(sentence(), "Now, your Mac has room to breathe.");
  EXPECT_EQ(view->postClearPercentage.get(), std::nullopt);
  EXPECT_EQ(log.count("handleTap: helper exceeded 2.650000s display budget; treating as optimistic success "
                      "and letting actual reclaim land in background"),
            1);

  goTo(8.0);
  setUsedPages(600'000);  // it lands during the hold
  std::move(transport.purgeMemory.held.at(0))({0, "late"});
  goTo(10.65 + rounding);
  EXPECT_EQ(view->postClearPercentage.get(), std::nullopt);
  EXPECT_TRUE(popoverLines().back().ends_with(
      "freedFreeDelta=1638400000 usedDelta=1638400000. Leaving cleared hold."));
}

TEST_F(PolishFlowTest, theTimesAreTheSameHoweverLongTheHelperTakes) {
  for (const double purge : {0.0, 2.64, 2.66, 19.9, 30.0}) {
    transport.purgeMemory.delaySeconds = purge;
    closes = 0;
    press();
    goBefore(2.65);
    EXPECT_EQ(sentence(), std::nullopt) << purge;
    goTo(2.65 + rounding);
    EXPECT_EQ(sentence(), "Now, your Mac has room to breathe.") << purge;
    goBefore(5.65);
    EXPECT_EQ(closes, 0) << purge;
    goTo(5.65 + rounding);
    EXPECT_EQ(closes, 1) << purge;
    goBefore(15.05);
    EXPECT_TRUE(view->isReleasing) << purge;
    goTo(15.05 + rounding);
    EXPECT_FALSE(view->isReleasing) << purge;
    goTo(40.0);
  }
}

TEST_F(PolishFlowTest, theFigureNeedsTwoWholePercent) {
  press();
  setUsedPages(981'000);
  goTo(2.65 + rounding);
  EXPECT_EQ(sentence(), "Now, your Mac has room to breathe.");
  EXPECT_EQ(view->postClearPercentage.get(), std::nullopt);
  goTo(15.05 + rounding);

  setUsedPages(1'000'000);
  press();
  setUsedPages(980'000);
  goTo(2.65 + rounding);
  EXPECT_EQ(view->postClearPercentage.get(), 2);
}

TEST_F(PolishFlowTest, aFailedSampleGivesTheSentenceWithoutAFigure) {
  press();
  memory.statistics.reset();
  goTo(2.65 + rounding);
  EXPECT_EQ(sentence(), "Now, your Mac has room to breathe.");
  EXPECT_EQ(view->postClearPercentage.get(), std::nullopt);
}

TEST_F(PolishFlowTest, aTickDuringTheHoldDoesNotMoveTheRing) {
  press();
  for (const double at : {1.0, 4.0, 7.0, 10.0}) {
    goTo(at);
    monitor.refresh();
    publishRing(0.6 + at / 100.0);
    EXPECT_EQ(view->animatedProgress, 0.0);
    EXPECT_EQ(view->animatedState.get(), RingState::healthy);
  }
  setHeat(0);
  publishRing(0.6);
  goTo(10.65 + rounding);
  EXPECT_DOUBLE_EQ(view->animatedProgress, 0.5175);  // 0.6 x 0.85 + 0.05 x 0.15
  EXPECT_EQ(view->animatedState.get(), RingState::healthy);
}

TEST_F(PolishFlowTest, aTickDuringTheSettleIsDroppedAndNotQueued) {
  press();
  goTo(12.0);
  publishRing(0.3);
  goTo(20.0);
  EXPECT_EQ(view->animatedProgress, 1.0);
  publishRing(0.3);  // no change
  EXPECT_EQ(view->animatedProgress, 1.0);
  publishRing(0.31);
  EXPECT_EQ(view->animatedProgress, 0.31);
}

TEST_F(PolishFlowTest, theFlowContinuesAfterThePopoverHasClosed) {
  int ringAtClose = -1;
  const auto subscription = notifications.observe<VorliClosePopover>(
      [&](const auto&) { ringAtClose = static_cast<int>(view->animatedProgress); });
  press();
  goTo(5.65 + rounding);
  EXPECT_EQ(ringAtClose, 0);
  const int reads = memory.statisticsReads;
  goBefore(10.65);
  EXPECT_EQ(memory.statisticsReads, reads);
  goTo(10.65 + rounding);
  EXPECT_EQ(memory.statisticsReads, reads + 1);  // one tick
}

TEST_F(PolishFlowTest, aCancelledFlowHurriesThroughAllItsSteps) {
  // Cancels in each sleep of the flow, including its first and last moment.
  for (const double cancelledAt :
       {0.0, 1.0, 2.64, 2.65, 3.0, 3.25, 5.0, 5.65, 9.0, 10.65, 12.0, 13.55, 15.0}) {
    log.clear();
    closes = 0;
    const auto flow = press();
    goTo(cancelledAt + rounding);
    flow.cancel();
    scheduler.runReady();

    EXPECT_FALSE(flow.isRunning()) << cancelledAt;
    EXPECT_FALSE(view->isReleasing) << cancelledAt;
    EXPECT_EQ(sentence(), std::nullopt);
    EXPECT_EQ(view->celebrationScale, 1.0);
    EXPECT_EQ(view->animatedProgress, 1.0);
    EXPECT_EQ(closes, 1);
    EXPECT_EQ(popoverLines().size(), 6u) << cancelledAt;
    EXPECT_EQ(popoverLines().back(), "handleTap: release flag cleared. animatedProgress=1.00");
    goTo(40.0);
    EXPECT_EQ(popoverLines().size(), 6u) << "the watchdog had gone";
  }
}

TEST_F(PolishFlowTest, aFlowThatIsCancelledBeforeItStartsStillPolishes) {
  const auto flow = view->polishPressed();
  flow.cancel();
  scheduler.runReady();
  EXPECT_FALSE(flow.isRunning());
  EXPECT_EQ(transport.requests.size(), 2u);
  EXPECT_EQ(closes, 1);
}

TEST_F(PolishFlowTest, aCancelledFlowStillWaitsForTheRace) {
  transport.purgeMemory.conduct = Conduct::silent;
  const auto flow = press();
  goTo(1.0);
  flow.cancel();
  goBefore(2.65);
  EXPECT_TRUE(flow.isRunning());
  goTo(2.65 + rounding);
  EXPECT_FALSE(flow.isRunning());
  EXPECT_FALSE(view->isReleasing);
}

TEST_F(PolishFlowTest, theViewMayBeDestroyedAtAnyMoment) {
  for (const double at : {0.0, 1.0, 3.0, 7.0, 12.0, 14.0}) {
    press();
    goTo(at + rounding);
    view.emplace(popoverServices());
    fakes::publish(view->animatedState, RingState::critical);
    scheduler.advance(20.0);
    EXPECT_FALSE(view->isReleasing);
  }
}

}  // namespace
}  // namespace vorli
