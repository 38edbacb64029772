#include "ambient/EdgeGlowView.h"
#include "tests/base/ExpectColour.h"
#include "tests/fakes/ManualScheduler.h"
#include "tests/fakes/Publish.h"

namespace vorli {
namespace {

TEST(EdgeGlowTest, reddensWithTheProgress) {
  for (const double progress : {0.0, 0.5, 0.9}) {
    expectColour(EdgeGlowView::glowColour(progress), {0.945, 0.525, 0.125});
  }
  expectColour(EdgeGlowView::glowColour(0.93), {0.9235, 0.38, 0.141});
  expectColour(EdgeGlowView::glowColour(0.96), {0.902, 0.235, 0.157});
  expectColour(EdgeGlowView::glowColour(0.98), {0.841, 0.241, 0.1765});
  for (const double progress : {1.0, 1.5}) {
    expectColour(EdgeGlowView::glowColour(progress), {0.78, 0.247, 0.196});
  }
}

TEST(EdgeGlowTest, beginsAtNineTenthsAndGrows) {
  EXPECT_EQ(EdgeGlowView::bandOpacity(0.0), 0.0);
  EXPECT_EQ(EdgeGlowView::bandOpacity(0.8999), 0.0);
  EXPECT_NEAR(EdgeGlowView::bandOpacity(0.9), 0.22, 1e-12);
  EXPECT_NEAR(EdgeGlowView::bandOpacity(0.95), 0.335, 1e-12);
  EXPECT_NEAR(EdgeGlowView::bandOpacity(1.0), 0.45, 1e-12);
  EXPECT_NEAR(EdgeGlowView::bandOpacity(1.3), 0.45, 1e-12);
}

TEST(EdgeGlowTest, theCalmTakesMostOfItAway) {
  EXPECT_EQ(EdgeGlowView::viewOpacity(0.8999, 0.0), 0.0);
  EXPECT_EQ(EdgeGlowView::viewOpacity(0.9, 0.0), 1.0);
  EXPECT_DOUBLE_EQ(EdgeGlowView::viewOpacity(0.95, 0.5), 0.65);
  EXPECT_DOUBLE_EQ(EdgeGlowView::viewOpacity(1.0, 1.0), 0.3);
}

struct EdgeGlowViewTest : testing::Test {
  void setProgress(double progress) {
    fakes::publish(state.progress, progress);
    view.stateChanged();
  }
  ports::GlowPicture after(double seconds) const {
    return view.picture(scheduler.now() + seconds, EdgeGlowView::Breathing::held);
  }

  fakes::ManualScheduler scheduler;
  EdgeGlowState state;
  EdgeGlowView view{scheduler, state};
};

TEST_F(EdgeGlowViewTest, crossingTheEdgeIsSoftBothWays) {
  setProgress(0.95);
  EXPECT_EQ(after(0.0).opacity, 0.0);
  EXPECT_NEAR(after(0.6).opacity, 0.335 / 2 * 0.5, 1e-9);  // half of the bands in half of the view
  EXPECT_NEAR(after(0.3).opacity, 0.335 * 0.129161931 * 0.129161931, 1e-9);
  EXPECT_NEAR(after(1.2).opacity, 0.335, 1e-12);
  EXPECT_TRUE(view.isLit());
  EXPECT_DOUBLE_EQ(view.settlesAt(), scheduler.now() + 1.2);

  scheduler.advance(5.0);
  setProgress(0.8999);
  EXPECT_NEAR(after(0.0).opacity, 0.335, 1e-12);
  EXPECT_NEAR(after(0.6).opacity, 0.335 / 4, 1e-9);
  EXPECT_NEAR(after(1.2).opacity, 0.0, 1e-12);
  EXPECT_FALSE(view.isLit());
}

TEST_F(EdgeGlowViewTest, theColourFollowsTheProgressSmoothly) {
  setProgress(0.96);
  expectColour(after(0.6).colour, {(0.945 + 0.902) / 2, (0.525 + 0.235) / 2, (0.125 + 0.157) / 2});
  expectColour(after(1.2).colour, {0.902, 0.235, 0.157});
}

TEST_F(EdgeGlowViewTest, itBreathesBetweenEightyFivePercentAndAll) {
  setProgress(1.0);
  scheduler.advance(2.0);
  view.appear();
  const auto breathing = [this](double seconds) {
    return view.picture(scheduler.now() + seconds, EdgeGlowView::Breathing::running).opacity;
  };
  EXPECT_NEAR(breathing(0.0), 0.45 * 0.85, 1e-9);
  EXPECT_NEAR(breathing(1.125), 0.45 * (0.85 + 0.15 * 0.129162), 1e-6);
  EXPECT_NEAR(breathing(2.25), 0.45 * 0.925, 1e-6);
  EXPECT_NEAR(breathing(4.5), 0.45, 1e-9);
  EXPECT_NEAR(breathing(9.0), 0.45 * 0.85, 1e-6);
  EXPECT_NEAR(after(2.25).opacity, 0.45, 1e-9);
}

TEST_F(EdgeGlowViewTest, aCalmThatChangesSixtyTimesASecondIsFollowed) {
  setProgress(1.0);
  scheduler.advance(2.0);
  for (int i = 1; i <= 600; ++i) {
    scheduler.advance(1.0 / 60.0);
    fakes::publish(state.calm, i / 600.0);
    view.stateChanged();
  }
  // The light follows the calm of 0.6 seconds ago, half of the time that a change takes.
  EXPECT_NEAR(after(0.0).opacity, 0.45 * (1.0 - 0.7 * 0.94), 0.45 * 0.7 * 0.002);
  EXPECT_NEAR(after(1.2).opacity, 0.45 * 0.3, 1e-9);
}

TEST_F(EdgeGlowViewTest, belowTheEdgeNothingMovesThePicture) {
  setProgress(0.7);
  fakes::publish(state.calm, 0.5);
  EXPECT_FALSE(view.stateChanged());
  EXPECT_LT(view.settlesAt(), scheduler.now());
  EXPECT_EQ(after(0.5).opacity, 0.0);
}

}  // namespace
}  // namespace vorli
