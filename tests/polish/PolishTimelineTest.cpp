#include "tests/polish/PolishFixture.h"

#include <algorithm>
#include <cmath>
#include <ostream>

namespace vorli {
namespace {

/// The state of a polish at one moment, as a user and a reader of the log see it.
struct Shown {
  std::string sentence;
  std::optional<int> percentage;
  double progress = 0.0;
  RingState state = RingState::healthy;
  double scale = 1.0;
  bool isReleasing = true;
  int closes = 0;
  std::size_t logLines = 0;

  bool operator==(const Shown&) const = default;
  friend std::ostream& operator<<(std::ostream& out, const Shown& shown) {
    return out << '"' << shown.sentence << "\", percentage " << shown.percentage.value_or(-1) << ", progress "
               << shown.progress << ' ' << description(shown.state) << ", scale " << shown.scale
               << ", releasing " << shown.isReleasing << ", closes " << shown.closes << ", lines "
               << shown.logLines;
  }
};

struct Edge {
  double seconds;
  Shown after;
};

struct PolishTimelineTest : PolishFixture {
  Shown shown() const {
    return {.sentence = view->statusSentence(),
            .percentage = view->postClearPercentage,
            .progress = std::round(view->animatedProgress * 1e6) / 1e6,
            .state = view->animatedState,
            .scale = view->celebrationScale,
            .isReleasing = view->isReleasing,
            .closes = closes,
            .logLines = popoverLines().size()};
  }

  /// Checks one frame before each edge, and on it.
  void expectEdges(const std::vector<Edge>& edges) {
    for (std::size_t i = 0; i < edges.size(); ++i) {
      if (i > 0) {
        goBefore(edges[i].seconds);
        EXPECT_EQ(shown(), edges[i - 1].after) << "before " << edges[i].seconds;
      }
      goTo(edges[i].seconds + rounding);
      EXPECT_EQ(shown(), edges[i].after) << "at " << edges[i].seconds;
    }
  }

  double ringAt(double seconds) const { return view->animatedProgress.shown(startedAt + seconds); }
  double scaleAt(double seconds) const { return view->celebrationScale.shown(startedAt + seconds); }
};

constexpr auto criticalRing = RingState::critical;
constexpr auto healthy = RingState::healthy;

TEST_F(PolishTimelineTest, theFullPolishKeepsItsTimes) {
  transport.purgeMemory.delaySeconds = 1.0;
  press();
  setUsedPages(900'000);  // the effect of the purge
  setHeat(0);             // the next tick gives 1.0 x 0.85 + 0.05 x 0.15

  const std::string polishing = "Polishing your Mac…", polished = "Now, your Mac has room to breathe.";
  const std::string full = "Your Mac is full. Time to polish it.";
  expectEdges({
      {0.0, {polishing, {}, 0.0, healthy, 1.0, true, 0, 2}},
      {1.0, {polishing, {}, 0.0, healthy, 1.0, true, 0, 3}},
      {2.65, {polished, 10, 0.0, healthy, 1.08, true, 0, 3}},
      {3.25, {polished, 10, 0.0, healthy, 1.0, true, 0, 3}},
      {5.65, {polished, 10, 0.0, healthy, 1.0, true, 1, 4}},
      {10.65, {polished, 10, 0.8575, criticalRing, 1.0, true, 1, 5}},
      {15.05, {full, {}, 0.8575, criticalRing, 1.0, false, 1, 6}},
  });
  EXPECT_EQ(
      popoverLines(),
      (std::vector<std::string>{
          "handleTap entered (isReleasing=false state=critical progress=1.00 helperStatus=Enabled)",
          "handleTap: setting isReleasing=true. helperReady=true audioActive=false",
          "handleTap: helper calls done in budget. dns exit=0 purge exit=0 reachable=true. Elapsed 1.00s",
          "handleTap: posted auto-close notification",
          "handleTap: after hold+refresh, ringProgress=0.86 ringState=critical freedFreeDelta=409600000 "
          "usedDelta=409600000. Leaving cleared hold.",
          "handleTap: release flag cleared. animatedProgress=0.86"}));
}

TEST_F(PolishTimelineTest, theGentleTidyKeepsItsTimes) {
  setHelperStatus(2);
  press();
  const std::string gentle = "A gentle tidy. Approve Vorli in Login Items for a full polish.";
  const std::string full = "Your Mac is full. Time to polish it.";
  expectEdges({
      {0.0, {gentle, {}, 0.0, healthy, 1.0, true, 0, 2}},
      {1.3, {gentle, {}, 0.0, healthy, 1.08, true, 0, 2}},
      {1.9, {gentle, {}, 0.0, healthy, 1.0, true, 0, 2}},
      {3.1, {gentle, {}, 0.0, healthy, 1.0, true, 1, 3}},
      {3.5, {gentle, {}, 1.0, criticalRing, 1.0, true, 1, 4}},
      {6.5, {full, {}, 1.0, criticalRing, 1.0, false, 1, 5}},
  });
  EXPECT_EQ(popoverLines(),
            (std::vector<std::string>{
                "handleTap entered (isReleasing=false state=critical progress=1.00 helperStatus=" +
                    manager.status->description() + ")",
                "handleTap: setting isReleasing=true. helperReady=false audioActive=false",
                "handleTap: posted auto-close notification",
                "handleTap: after hold+refresh, ringProgress=1.00 ringState=critical freedFreeDelta=0 "
                "usedDelta=0. Leaving cleared hold.",
                "handleTap: release flag cleared. animatedProgress=1.00"}));
  EXPECT_TRUE(transport.requests.empty());
}

TEST_F(PolishTimelineTest, thePressKeepsItsOrder) {
  setHelperStatus(0);
  settings.quitHiddenAppsOnClear.set(true);
  tap.play({0.5F});
  std::vector<std::string> steps;
  // Everything that has happened by then, except for the step itself.
  const auto note = [&](const std::string& step) {
    steps.push_back(
        step + ": lines " + std::to_string(popoverLines().size()) + " taps " +
        std::to_string(haptics.taps.size()) + " glows " + std::to_string(overlay.restTimes.size()) +
        " looks " + std::to_string(workspace.windowLooks) + " timers " +
        std::to_string(scheduler.pendingTimers()) + " samples " + std::to_string(memory.statisticsReads));
  };
  const auto timers = scheduler.pendingTimers();
  const auto samples = memory.statisticsReads;
  const std::vector<Subscription> subscriptions = [&] {
    std::vector<Subscription> all;
    all.push_back(view->isReleasing.subscribeToChanges([&](bool) { note("releasing"); }));
    all.push_back(view->postClearSentence.subscribeToChanges([&](const auto&) { note("sentence"); }));
    all.push_back(view->auroraClearTrigger.subscribeToChanges([&](int) { note("aurora"); }));
    all.push_back(view->animatedProgress.subscribe([&](double) { note("drain"); }));
    return all;
  }();
  tap.duringWindow = [&](double) { note("probe"); };
  press();
  const auto still = " timers " + std::to_string(timers) + " samples " + std::to_string(samples);
  EXPECT_EQ(steps, (std::vector<std::string>{"probe: lines 1 taps 0 glows 0 looks 0" + still,
                                             "releasing: lines 1 taps 0 glows 0 looks 0" + still,
                                             "sentence: lines 2 taps 0 glows 0 looks 0" + still,
                                             "aurora: lines 3 taps 1 glows 1 looks 0" + still,
                                             "drain: lines 3 taps 1 glows 1 looks 1" + still}));
  EXPECT_EQ(memory.statisticsReads, samples + 1);
}

TEST_F(PolishTimelineTest, theStepsOfOneMomentKeepTheirOrder) {
  std::vector<std::string> steps;
  const auto note = [&](const std::string& step) {
    steps.push_back(step + " after " + std::to_string(popoverLines().size()) + " lines");
  };
  press();
  setUsedPages(500'000);
  const auto sentence = view->postClearSentence.subscribeToChanges(
      [&](const auto& text) { note(text ? "sentence" : "no sentence"); });
  const auto percentage = view->postClearPercentage.subscribeToChanges(
      [&](const auto& figure) { note(figure ? "figure" : "no figure"); });
  const auto scale = view->celebrationScale.subscribe([&](double) { note("scale"); });
  const auto calm = clearState.calmIntensity.subscribeToChanges(CalmPace::dial, [&](double value) {
    if (value == 0.0) note("calm");
  });
  const auto close = notifications.observe<VorliClosePopover>([&](const auto&) { note("close"); });
  const auto tick = monitor.lastUpdate.subscribeToChanges([&](Date) { note("tick"); });
  const auto ring = view->animatedProgress.subscribe([&](double) { note("ring"); });
  const auto releasing = view->isReleasing.subscribeToChanges([&](bool) { note("free"); });
  goTo(15.05 + rounding);
  EXPECT_EQ(steps, (std::vector<std::string>{
                       "no figure after 3 lines", "sentence after 3 lines", "figure after 3 lines",
                       "scale after 3 lines", "calm after 3 lines", "scale after 3 lines",
                       "close after 3 lines", "tick after 4 lines", "ring after 5 lines",
                       "no sentence after 5 lines", "no figure after 5 lines", "free after 5 lines"}));
}

TEST_F(PolishTimelineTest, theRingDrainsSlowlyAtFirstAndIsEmptyAfter185) {
  press();
  goTo(2.0);
  EXPECT_EQ(ringAt(0.0), 1.0);
  EXPECT_NEAR(ringAt(0.185), 0.988374, 1e-6);
  EXPECT_NEAR(ringAt(0.925), 0.854732, 1e-6);
  EXPECT_NEAR(ringAt(1.665), 0.241684, 1e-6);
  EXPECT_GT(ringAt(1.85 - frame), 0.0);
  EXPECT_EQ(ringAt(1.85), 0.0);
}

TEST_F(PolishTimelineTest, theGentleTidySpeaksWhileTheRingStillDrains) {
  setHelperStatus(0);
  press();
  goTo(1.3 + rounding);
  EXPECT_EQ(view->celebrationScale, 1.08);
  EXPECT_GT(ringAt(1.3), 0.5);
  EXPECT_EQ(ringAt(1.85), 0.0);
}

TEST_F(PolishTimelineTest, theRingRisesToTheTrueValue) {
  press();
  goTo(15.0);
  EXPECT_EQ(ringAt(10.65), 0.0);
  EXPECT_NEAR(ringAt(10.65 + 0.7), 0.129162, 1e-6);
  EXPECT_NEAR(ringAt(10.65 + 1.4), 0.5, 1e-6);
  EXPECT_LT(ringAt(13.45 - frame), 1.0);
  EXPECT_NEAR(ringAt(13.45), 1.0, 1e-6);
}

TEST_F(PolishTimelineTest, theGentleTidyRaisesTheRingInHalfTheTime) {
  setHelperStatus(3);
  press();
  goTo(6.0);
  EXPECT_EQ(ringAt(3.5), 0.0);
  EXPECT_NEAR(ringAt(3.5 + 0.7), 0.5, 1e-6);
  EXPECT_NEAR(ringAt(4.9), 1.0, 1e-6);
}

TEST_F(PolishTimelineTest, theRingBouncesOnceAndComesToRest) {
  press();
  goTo(2.65 + rounding);
  EXPECT_NEAR(scaleAt(2.65), 1.0, 1e-6);
  EXPECT_NEAR(scaleAt(2.65 + 0.15), 1.049900, 1e-5);
  double largest = 0.0;
  for (double t = 2.65; t < 3.25; t += frame) largest = std::max(largest, scaleAt(t));
  EXPECT_NEAR(largest, 1.08 + 0.08 * std::exp(-0.55 * M_PI / std::sqrt(1 - 0.55 * 0.55)), 0.0005);

  goTo(3.25 + rounding);
  const double grown = scaleAt(3.25);
  EXPECT_GT(grown, 1.07);
  EXPECT_NEAR(scaleAt(3.25 + 0.2), 1.0 + (grown - 1.0) * (1.0 - 0.129162), 1e-6);
  EXPECT_NEAR(scaleAt(3.25 + 0.4), 1.0 + (grown - 1.0) * 0.5, 1e-6);
  EXPECT_GT(scaleAt(4.05 - frame), 1.0);
  EXPECT_NEAR(scaleAt(4.05), 1.0, 1e-6);
}

TEST_F(PolishTimelineTest, theCalmRisesFromTheSentenceOn) {
  press();
  goBefore(2.65);
  EXPECT_EQ(clearState.calmIntensity.get(), 0.0);
  goTo(2.65 + rounding);
  EXPECT_EQ(clearState.calmIntensity.get(), 0.0);
  goTo(2.65 + 0.45);
  EXPECT_NEAR(clearState.calmIntensity, 0.5, 1e-9);
  goTo(2.65 + 0.9 - frame);
  EXPECT_LT(clearState.calmIntensity, 1.0);
  goTo(2.65 + 0.9);
  EXPECT_EQ(clearState.calmIntensity, 1.0);
  goTo(2.65 + 0.9 + 150.0);
  EXPECT_NEAR(clearState.calmIntensity, 0.5, 0.001);
  goTo(2.65 + 0.9 + 300.1);
  EXPECT_EQ(clearState.calmIntensity, 0.0);
}

TEST_F(PolishTimelineTest, theCalmOfAGentleTidyComesWithItsBounce) {
  setHelperStatus(0);
  press();
  goBefore(1.3);
  EXPECT_EQ(clearState.calmIntensity.get(), 0.0);
  goTo(1.3 + 0.45 + rounding);
  EXPECT_NEAR(clearState.calmIntensity, 0.5, 1e-9);
}

TEST_F(PolishTimelineTest, sentenceAndFigureFadeInSixTenthsOfASecond) {
  Animated<double> sentence(scheduler, 1.0), figure(scheduler, 1.0);
  press();
  setUsedPages(500'000);
  goTo(14.0);
  ASSERT_EQ(view->postClearPercentage.get(), 50);
  const auto words = view->postClearSentence.subscribeToChanges(
      [&sentence](const auto& text) { sentence = text ? 1.0 : 0.0; });
  const auto number = view->postClearPercentage.subscribeToChanges(
      [&figure](const auto& percentage) { figure = percentage ? 1.0 : 0.0; });
  goTo(15.05 + rounding);
  for (const auto* opacity : {&sentence, &figure}) {
    EXPECT_EQ(opacity->model(), 0.0);
    EXPECT_NEAR(opacity->shown(startedAt + 15.05 + 0.15), 1.0 - 0.129162, 1e-6);
    EXPECT_NEAR(opacity->shown(startedAt + 15.05 + 0.3), 0.5, 1e-6);
    EXPECT_NEAR(opacity->shown(startedAt + 15.05 + 0.6), 0.0, 1e-6);
  }
}

TEST_F(PolishTimelineTest, aBlockingProbeMovesEverythingBehindIt) {
  bool wasReleasing = true;
  tap.duringWindow = [&](double window) {
    wasReleasing = view->isReleasing;
    EXPECT_EQ(view->animatedProgress.model(), 1.0);
    EXPECT_EQ(view->auroraClearTrigger.get(), 0);
    scheduler.advanceClockOnly(window);
  };
  press();
  EXPECT_FALSE(wasReleasing);
  EXPECT_EQ(ringAt(0.15), 1.0);
  EXPECT_EQ(ringAt(0.15 + 1.85), 0.0);
  goBefore(0.15 + 2.65);
  EXPECT_EQ(view->statusSentence(), "Polishing your Mac…");
  goTo(0.15 + 2.65 + rounding);
  EXPECT_EQ(view->statusSentence(), "Now, your Mac has room to breathe.");
  goBefore(0.15 + 15.05);
  EXPECT_TRUE(view->isReleasing);
  goTo(0.15 + 15.05 + rounding);
  EXPECT_FALSE(view->isReleasing);
}

}  // namespace
}  // namespace vorli
