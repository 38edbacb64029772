#include <gmock/gmock.h>
// The fixture is written for a program that has both precompiled.
#include "tests/fakes/Publish.h"
#include "tests/polish/PolishFixture.h"
#include "ui/popover/PopoverScene.h"

#include <optional>

namespace vorli::ui {
namespace {

using Id = PopoverControlId;

// Progress of the curves after a half (eased out, in, and both), and after a quarter.
constexpr double outHalf = 0.684643, inHalf = 0.315357, inOutQuarter = 0.129162, standardHalf = 0.802403;
constexpr double sceneTolerance = 1e-5;

struct PopoverSceneTest : PolishFixture {
  PopoverSceneTest() {
    store.setObject("hasShownLaunchCeremony", true);
    notifications.post(VorliAnimateAppear{});
    scheduler.advance(1.0);
    scene.emplace(scheduler, *view, [] {});
    content = view->subscribeToContent([this] { scene->followContent(scheduler.now()); });
    showRing(0.9);
  }
  ~PopoverSceneTest() override { scene.reset(); }

  void showRing(double progress) {
    fakes::publish(view->animatedProgress, progress);
    fakes::publish(view->animatedState, ringState(progress));
    scheduler.advance(5.0);
  }
  PopoverPicture after(double seconds) const { return scene->picture(scheduler.now() + seconds); }
  void addProcess(const char* name) {
    ProcessSnapshot process;
    process.name = process.displayName = name;
    process.activationPolicy = ports::ActivationPolicy::regular;
    process.residentBytes = 1;
    fakes::publish(monitor.topMemoryHogs, std::vector{process});
    scheduler.advance(5.0);
  }

  std::optional<PopoverScene> scene;
  Subscription content;
};

TEST_F(PopoverSceneTest, pointerRaisesAControlFasterThanItLetsItGo) {
  scene->setHovered(Id::polish, true);
  EXPECT_NEAR(after(0.06).ring.button.hover, outHalf, sceneTolerance);
  EXPECT_EQ(after(0.12).ring.button.hover, 1.0);
  scheduler.advance(1.0);
  scene->setHovered(Id::polish, false);
  EXPECT_NEAR(after(0.08).ring.button.hover, 1.0 - outHalf, sceneTolerance);
  EXPECT_EQ(after(0.16).ring.button.hover, 0.0);
}

TEST_F(PopoverSceneTest, pressSpringsAndOvershoots) {
  scene->setPressed(Id::polish, true);
  EXPECT_NEAR(after(0.05).ring.button.press, 0.623753, sceneTolerance);
  EXPECT_NEAR(after(0.1).ring.button.press, 1.096452, sceneTolerance);
  EXPECT_NEAR(after(0.15).ring.button.press, 1.087663, sceneTolerance);
  EXPECT_EQ(after(1.0).ring.button.press, 1.0);
}

TEST_F(PopoverSceneTest, withLessMovementAPressIsShownAtOnceAndNothingScales) {
  motion.setReduced(true);
  scene->setPressed(Id::polish, true);
  EXPECT_EQ(after(0.0).ring.button.press, 1.0);
  EXPECT_FALSE(after(0.0).ring.button.scales);
}

TEST_F(PopoverSceneTest, glassFollowsTheEffectOfAPress) {
  EXPECT_EQ(after(0.0).ring.lens, 1.0);
  showRing(0.1);
  EXPECT_EQ(after(0.0).ring.lens, 0.45);
  showRing(0.9);
  setHelperStatus(2);
  scheduler.advance(5.0);
  EXPECT_EQ(after(0.0).ring.lens, 0.45);
  setHelperStatus(1);
  scheduler.advance(5.0);
  fakes::publish(view->isReleasing, true);
  scheduler.runReady();
  EXPECT_NEAR(after(0.125).ring.lens, 1.0 - 0.75 * outHalf, sceneTolerance);
  EXPECT_EQ(after(0.25).ring.lens, 0.25);
}

TEST_F(PopoverSceneTest, polishedRingRestsLikeACalmOne) {
  press();
  goTo(2.6);
  EXPECT_EQ(after(0.0).ring.lens, 0.25);
  goTo(2.65 + 1e-6);
  EXPECT_NEAR(after(0.125).ring.lens, 0.25 + 0.2 * outHalf, 0.001);
  EXPECT_EQ(after(0.25).ring.lens, 0.45);
}

TEST_F(PopoverSceneTest, ringOverCulpritsLiesWhereTheirCardIsInBalance) {
  showRing(0.6);
  addProcess("Notes");
  EXPECT_EQ(after(0.0).words.sentence.text, "Your Mac is starting to fill up.");
  EXPECT_EQ(after(0.0).ringCentreY, 114.0);
  view->culpritNamePressed("Notes");
  scheduler.advance(1.0);
  EXPECT_EQ(after(0.0).ringCentreY, 114.0);
}

TEST_F(PopoverSceneTest, wordOfTheButtonDisappearsAtThePressAndReturnsAtTheEnd) {
  fakes::publish(view->isReleasing, true);
  scheduler.runReady();
  EXPECT_EQ(after(0.0).ring.labelOpacity, 1.0);
  EXPECT_NEAR(after(0.125).ring.labelOpacity, 1.0 - outHalf, sceneTolerance);
  EXPECT_EQ(after(0.25).ring.labelOpacity, 0.0);
  scheduler.advance(5.0);
  fakes::publish(view->isReleasing, false);
  scheduler.runReady();
  EXPECT_NEAR(after(0.15).ring.labelOpacity, inOutQuarter, sceneTolerance);
  EXPECT_NEAR(after(0.3).ring.labelOpacity, 0.5, sceneTolerance);
  EXPECT_EQ(after(0.6).ring.labelOpacity, 1.0);
}

TEST_F(PopoverSceneTest, wordKeepsItsHeavyFaceWhileItFades) {
  EXPECT_TRUE(after(0.0).ring.labelReady);
  press();
  scheduler.advance(5.0);
  EXPECT_FALSE(after(0.0).ring.canPolish);
  EXPECT_TRUE(after(0.0).ring.labelReady);
  fakes::publish(view->isReleasing, false);
  scheduler.runReady();
  EXPECT_FALSE(after(0.0).ring.labelReady);  // the ring is calm now
}

TEST_F(PopoverSceneTest, calmIsPassedOn) {
  EXPECT_EQ(after(0.0).calmIntensity, 0.0);
  fakes::publish(clearState.calmIntensity, 0.4);
  EXPECT_EQ(after(0.0).calmIntensity, 0.4);
}

TEST_F(PopoverSceneTest, changesBeforeTheFirstFrameJump) {
  notifications.post(VorliAnimateDismiss{});
  scheduler.advance(1.0);
  notifications.post(VorliAnimateAppear{});
  fakes::publish(view->postClearSentence, "Now, your Mac has room to breathe.");
  scheduler.runReady();
  EXPECT_EQ(after(0.0).ringCentreY, 110.0);
  EXPECT_EQ(after(0.0).words.sentence.text, "Now, your Mac has room to breathe.");
  EXPECT_EQ(after(0.0).words.sentence.opacity, 1.0);
}

TEST_F(PopoverSceneTest, cardAboveALowerPanelKeepsItsLowerEdge) {
  scene->setCardHeight(24.0);
  EXPECT_EQ(after(0.0).cardTop, 0.0);
  scene->setEdge(PopoverScene::Edge::bottom);
  EXPECT_EQ(after(0.0).cardTop, 240.0 - 24.0);
  scene->setCardHeight(240.0);
  EXPECT_EQ(after(0.0).cardTop, 0.0);
}

TEST_F(PopoverSceneTest, wordMakesRoomForTheDots) {
  showRing(0.1);
  view->setHovered(true);
  scheduler.runReady();
  EXPECT_NEAR(after(0.08).ring.labelOpacity, 1.0 - outHalf, sceneTolerance);
  EXPECT_EQ(after(0.16).ring.labelOpacity, 0.0);
  EXPECT_NEAR(after(0.1).ring.dots[0].opacity, 0.88 * 0.661914, sceneTolerance);
  EXPECT_NEAR(after(0.1).ring.dotsScale, 0.94 + 0.06 * 0.502909, sceneTolerance);
  EXPECT_EQ(after(5.0).ring.dots[11].opacity, 0.88);
}

TEST_F(PopoverSceneTest, ringAndWordsMoveTogetherWithTheHeight) {
  EXPECT_EQ(after(0.0).ringCentreY, 96.0);
  EXPECT_EQ(after(0.0).words.headlineTop, 175.0);
  fakes::publish(view->postClearSentence, "Now, your Mac has room to breathe.");
  scheduler.runReady();
  EXPECT_NEAR(after(0.16).ringCentreY, 96.0 + 14.0 * standardHalf, sceneTolerance * 14.0);
  EXPECT_NEAR(after(0.16).words.headlineTop, 175.0 + 12.0 * standardHalf, sceneTolerance * 12.0);
  EXPECT_EQ(after(0.32).ringCentreY, 110.0);
  EXPECT_EQ(after(0.32).words.headlineTop, 187.0);
  EXPECT_EQ(scene->restingContentHeight(), 304.0);
}

TEST_F(PopoverSceneTest, sentencesFollowEachOtherInPlace) {
  showRing(0.6);
  fakes::publish(view->animatedState, RingState::critical);
  scheduler.runReady();
  EXPECT_EQ(after(0.0).words.sentence.text, "Your Mac is starting to fill up.");
  EXPECT_NEAR(after(0.06).words.sentence.opacity, 1.0 - inHalf, sceneTolerance);
  scheduler.advance(0.12);
  EXPECT_EQ(after(0.0).words.sentence.text, "Your Mac is full. Time to polish it.");
  EXPECT_EQ(after(0.0).words.sentence.opacity, 0.0);
  EXPECT_NEAR(after(0.09).words.sentence.opacity, outHalf, sceneTolerance);
  EXPECT_EQ(after(0.18).words.sentence.opacity, 1.0);
}

TEST_F(PopoverSceneTest, outcomeOfAPolishLeavesInSixTenthsOfASecond) {
  press();
  setUsedPages(500'000);
  setHeat(0);
  goTo(15.0);
  const QString outcome = QStringLiteral("Now, your Mac has room to breathe.");
  ASSERT_EQ(after(0.0).words.sentence.text, outcome);
  ASSERT_TRUE(after(0.0).words.banner);
  goTo(15.05 + 1e-6);
  for (const auto& [seconds, opacity] : {std::pair(0.0, 1.0), std::pair(0.15, 1.0 - inOutQuarter),
                                         std::pair(0.3, 0.5), std::pair(0.59, 0.0)}) {
    const auto words = after(seconds).words;
    EXPECT_EQ(words.sentence.text, outcome);
    ASSERT_TRUE(words.banner) << seconds;
    EXPECT_NEAR(words.sentence.opacity, opacity, 0.002) << seconds;
    EXPECT_NEAR(words.banner->opacity, opacity, 0.002) << seconds;
  }
  goTo(15.05 + 0.6 + 2e-6);
  EXPECT_NE(after(0.0).words.sentence.text, outcome);
  EXPECT_FALSE(after(0.0).words.banner);
  EXPECT_NEAR(after(0.09).words.sentence.opacity, outHalf, 0.001);
  EXPECT_EQ(after(0.18).words.sentence.opacity, 1.0);
}

TEST_F(PopoverSceneTest, questionFadesOverTheCulpritsInPlace) {
  addProcess("Notes");
  view->culpritNamePressed("Notes");
  scheduler.runReady();
  EXPECT_NEAR(after(0.1).words.culprits->opacity, 1.0 - outHalf, sceneTolerance);
  EXPECT_NEAR(after(0.1).words.quit->opacity, outHalf, sceneTolerance);
  EXPECT_FALSE(after(0.2).words.culprits);
  EXPECT_EQ(after(0.2).words.quit->opacity, 1.0);
  EXPECT_EQ(after(0.2).words.quit->name, "Notes");
  EXPECT_EQ(after(0.1).words.headlineTop, after(0.2).words.headlineTop);
}

TEST_F(PopoverSceneTest, bounceTakesTheWholeGroupOfTheRingWithIt) {
  press();
  goTo(1.7);
  const auto before = after(0.0);
  fakes::publish(view->celebrationScale, 1.08);
  const auto grown = after(0.0);
  EXPECT_EQ(grown.ring.scale, 1.08);
  EXPECT_DOUBLE_EQ(grown.aurora.warmCloud.scale, before.aurora.warmCloud.scale * 1.08);
  EXPECT_DOUBLE_EQ(grown.aurora.bloom.scale, 1.08);
  EXPECT_DOUBLE_EQ(grown.aurora.leak.scale, 1.6 * 1.08);
  for (std::size_t i = 0; i < 12; ++i) {
    const auto &from = (*before.aurora.sparks)[i], &to = (*grown.aurora.sparks)[i];
    EXPECT_DOUBLE_EQ(to.x, from.x * 1.08);
    EXPECT_DOUBLE_EQ(to.y, from.y * 1.08);
    EXPECT_DOUBLE_EQ(to.scale, from.scale * 1.08);
    EXPECT_EQ(to.opacity, from.opacity);
  }
  motion.setReduced(true);
  EXPECT_EQ(after(0.0).aurora.bloom.scale, 1.0);
}

}  // namespace
}  // namespace vorli::ui
