#include "popover/PopoverView.h"
#include "tests/fakes/Publish.h"
#include "tests/polish/PolishFixture.h"

namespace vorli {
namespace {

struct PopoverViewTest : PolishFixture {
  void showRing(double progress) {
    fakes::publish(view->animatedProgress, progress);
    fakes::publish(view->animatedState, ringState(progress));
  }
};

TEST_F(PopoverViewTest, startsCalmAndIdle) {
  const PopoverView fresh(popoverServices());
  EXPECT_FALSE(fresh.isReleasing);
  EXPECT_EQ(fresh.animatedProgress, 0.0);
  EXPECT_EQ(fresh.animatedState.get(), RingState::healthy);
  EXPECT_EQ(fresh.celebrationScale, 1.0);
  EXPECT_EQ(fresh.postClearSentence.get(), std::nullopt);
  EXPECT_EQ(fresh.postClearPercentage.get(), std::nullopt);
  EXPECT_EQ(fresh.auroraClearTrigger.get(), 0);
}

TEST_F(PopoverViewTest, theRingFollowsTheMonitorIn600Milliseconds) {
  showRing(0.3);
  publishRing(0.9);
  const double now = scheduler.now();
  EXPECT_EQ(view->animatedProgress.model(), 0.9);
  EXPECT_EQ(view->animatedProgress.shown(now), 0.3);
  EXPECT_NEAR(view->animatedProgress.shown(now + 0.15), 0.3 + 0.6 * 0.129162, 1e-6);
  EXPECT_NEAR(view->animatedProgress.shown(now + 0.3), 0.6, 1e-6);
  EXPECT_EQ(view->animatedProgress.shown(now + 0.6), 0.9);
}

TEST_F(PopoverViewTest, theStateFollowsWhenItChanges) {
  showRing(0.9);
  publishRing(0.7999);
  EXPECT_EQ(view->animatedState.get(), RingState::warming);
  publishRing(0.5499);
  EXPECT_EQ(view->animatedState.get(), RingState::healthy);
  publishRing(0.8);
  EXPECT_EQ(view->animatedState.get(), RingState::critical);
}

TEST_F(PopoverViewTest, aValueThatIsPublishedAgainIsNoChange) {
  showRing(0.2);
  publishRing(monitor.ringProgress);
  EXPECT_EQ(view->animatedProgress, 0.2);
  EXPECT_EQ(view->animatedState.get(), RingState::healthy);
}

TEST_F(PopoverViewTest, aChangeOfTheRingWithinOneStateLeavesTheState) {
  publishRing(0.95);
  fakes::publish(view->animatedState, RingState::healthy);
  publishRing(0.9);
  EXPECT_EQ(view->animatedProgress, 0.9);
  EXPECT_EQ(view->animatedState.get(), RingState::healthy);
}

TEST_F(PopoverViewTest, whileReleasingTheRingIsHeld) {
  showRing(0.9);
  fakes::publish(view->isReleasing, true);
  publishRing(0.2);
  EXPECT_EQ(view->animatedProgress, 0.9);
  EXPECT_EQ(view->animatedState.get(), RingState::critical);
  fakes::publish(view->isReleasing, false);
  scheduler.runReady();
  EXPECT_EQ(view->animatedProgress, 0.9);
}

TEST_F(PopoverViewTest, canPolishNeedsALoadedRingTheHelperAndNoPolishUnderWay) {
  showRing(0.55);
  EXPECT_TRUE(view->canPolish());
  showRing(0.54);
  EXPECT_FALSE(view->canPolish());
  showRing(0.9);
  EXPECT_TRUE(view->canPolish());
  fakes::publish(view->isReleasing, true);
  EXPECT_FALSE(view->canPolish());
  fakes::publish(view->isReleasing, false);
  for (const int status : {0, 2, 3, 9}) {
    setHelperStatus(status);
    EXPECT_FALSE(view->canPolish()) << status;
  }
  setHelperStatus(1);
  EXPECT_TRUE(view->canPolish());
}

TEST_F(PopoverViewTest, theButtonDescribesTheEffectOfAPress) {
  showRing(0.9);
  EXPECT_EQ(view->polishToolTip(), "Tap to polish your Mac");
  EXPECT_EQ(view->polishAccessibilityLabel(), "Polish");
  EXPECT_EQ(view->polishAccessibilityHint(), "Frees memory and flushes caches. Takes about three seconds.");

  showRing(0.1);
  EXPECT_EQ(view->polishToolTip(), "Your Mac is feeling great. No polish needed right now.");
  EXPECT_EQ(view->polishAccessibilityLabel(), "Polish (disabled)");
  EXPECT_EQ(view->polishAccessibilityHint(), "Your Mac doesn't need polishing right now.");

  showRing(0.9);
  setHelperStatus(2);
  EXPECT_EQ(view->polishToolTip(),
            "Background helper isn't ready. Open Settings, then General, then Login Items to approve Vorli.");
  EXPECT_EQ(view->polishAccessibilityLabel(), "Polish (disabled)");
  EXPECT_EQ(view->polishAccessibilityHint(), "Your Mac doesn't need polishing right now.");
}

TEST_F(PopoverViewTest, theStatusSentenceFollowsTheState) {
  showRing(0.5499);
  EXPECT_EQ(view->statusSentence(), "Your Mac feels great.");
  showRing(0.55);
  EXPECT_EQ(view->statusSentence(), "Your Mac is starting to fill up.");
  showRing(0.8);
  EXPECT_EQ(view->statusSentence(), "Your Mac is full. Time to polish it.");
}

TEST_F(PopoverViewTest, theFirstSentenceThatAppliesIsShown) {
  showRing(0.1);
  view->setHovered(true);
  EXPECT_EQ(view->statusSentence(), "Nothing to polish. Enjoy the calm.");
  fakes::publish(view->isReleasing, true);
  EXPECT_EQ(view->statusSentence(), "Polishing your Mac…");
  fakes::publish(view->postClearSentence, "Now, your Mac has room to breathe.");
  EXPECT_EQ(view->statusSentence(), "Now, your Mac has room to breathe.");
  fakes::publish(view->isReleasing, false);
  EXPECT_EQ(view->statusSentence(), "Now, your Mac has room to breathe.");
}

TEST_F(PopoverViewTest, thePointerReassuresOnlyOnACalmRing) {
  view->setHovered(true);
  showRing(0.1);
  EXPECT_TRUE(view->showsReassurance());
  showRing(0.9);
  EXPECT_FALSE(view->showsReassurance());
  EXPECT_EQ(view->statusSentence(), "Your Mac is full. Time to polish it.");
  setHelperStatus(0);
  EXPECT_FALSE(view->showsReassurance());
  showRing(0.1);
  EXPECT_TRUE(view->showsReassurance());
  fakes::publish(view->postClearSentence, "Now, your Mac has room to breathe.");
  EXPECT_FALSE(view->showsReassurance());
  fakes::publish(view->postClearSentence, std::nullopt);
  fakes::publish(view->isReleasing, true);
  EXPECT_FALSE(view->showsReassurance());
  fakes::publish(view->isReleasing, false);
  view->setHovered(false);
  EXPECT_FALSE(view->showsReassurance());
}

TEST_F(PopoverViewTest, twoOfTheSentencesBringTheLinkToTheSettings) {
  EXPECT_FALSE(view->showsOpenSettingsLink());
  fakes::publish(view->postClearSentence, "A gentle tidy. Approve Vorli in Login Items for a full polish.");
  EXPECT_TRUE(view->showsOpenSettingsLink());
  fakes::publish(view->postClearSentence, "A gentle tidy. Couldn't reach the helper for a full polish.");
  EXPECT_TRUE(view->showsOpenSettingsLink());
  fakes::publish(view->postClearSentence,
                 "A gentle tidy. Held off the deep polish so your audio stays smooth.");
  EXPECT_FALSE(view->showsOpenSettingsLink());
  fakes::publish(view->postClearSentence, "Now, your Mac has room to breathe.");
  EXPECT_FALSE(view->showsOpenSettingsLink());
}

TEST_F(PopoverViewTest, theBannerIsShownAndReadOutInItsOwnWords) {
  EXPECT_EQ(view->percentBanner(), std::nullopt);
  EXPECT_EQ(view->percentBannerAccessibilityText(), std::nullopt);
  fakes::publish(view->postClearPercentage, 12);
  EXPECT_EQ(view->percentBanner(), "12% LIGHTER");
  EXPECT_EQ(view->percentBannerAccessibilityText(), "12 percent lighter");
}

}  // namespace
}  // namespace vorli
