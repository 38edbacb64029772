#include "ambient/CelebrationGlowController.h"
#include "tests/fakes/GlowOverlay.h"
#include "tests/fakes/ManualScheduler.h"

#include <vector>

namespace vorli {
namespace {

constexpr Colour red{0.902, 0.235, 0.157};
constexpr Colour calm{0.423, 0.659, 0.643};

struct CelebrationGlowControllerTest : testing::Test {
  ports::GlowPicture shownAfter(double seconds) const { return window.pictureAt(startedAt + seconds); }
  double intensityAfter(double seconds) const { return shownAfter(seconds).opacity; }

  void celebrate(const Colour& colour = red) {
    startedAt = scheduler.now();
    controller.celebrate(colour);
  }

  fakes::ManualScheduler scheduler;
  fakes::GlowOverlay window;
  CelebrationGlowController controller{scheduler, window};
  double startedAt = 0.0;
};

TEST_F(CelebrationGlowControllerTest, startsClearAndWithoutAWindow) {
  EXPECT_EQ(controller.state().currentColor.shown().alpha, 0.0);
  EXPECT_EQ(controller.state().intensity.shown(), 0.0);
  EXPECT_TRUE(window.builds.empty());
}

TEST_F(CelebrationGlowControllerTest, appearsInTheGivenColour) {
  celebrate();
  EXPECT_EQ(shownAfter(0.0), (ports::GlowPicture{red, 0.0}));
  EXPECT_NEAR(intensityAfter(0.1), 0.55 * 0.378138, 1e-6);
  EXPECT_NEAR(intensityAfter(0.2), 0.55 * 0.684643, 1e-6);
  EXPECT_LT(intensityAfter(0.39), 0.55);
  EXPECT_EQ(shownAfter(0.4), (ports::GlowPicture{red, 0.55}));
}

TEST_F(CelebrationGlowControllerTest, turnsCalmOverOneAndAHalfSeconds) {
  celebrate();
  const Colour setOut = shownAfter(0.4 + 0.375).colour;
  EXPECT_NEAR(setOut.red, 0.902 + (0.423 - 0.902) * 0.129162, 1e-6);
  EXPECT_NEAR(setOut.blue, 0.157 + (0.643 - 0.157) * 0.129162, 1e-6);
  const Colour halfWay = shownAfter(0.4 + 0.75).colour;
  EXPECT_NEAR(halfWay.red, (0.902 + 0.423) / 2, 1e-9);
  EXPECT_NEAR(halfWay.green, (0.235 + 0.659) / 2, 1e-9);
  EXPECT_NE(shownAfter(1.89).colour, calm);
  EXPECT_EQ(shownAfter(1.9), (ports::GlowPicture{calm, 0.55}));
}

TEST_F(CelebrationGlowControllerTest, disappearsAfterTwoPointEightSeconds) {
  celebrate();
  EXPECT_NEAR(intensityAfter(1.9 + 0.225), 0.55 * (1.0 - 0.093465), 1e-6);
  EXPECT_NEAR(intensityAfter(1.9 + 0.45), 0.55 * (1.0 - 0.315357), 1e-6);
  EXPECT_GT(intensityAfter(2.79), 0.0);
  EXPECT_EQ(shownAfter(2.8), (ports::GlowPicture{calm, 0.0}));
  ASSERT_EQ(window.restTimes.size(), 1u);
  EXPECT_DOUBLE_EQ(window.restTimes[0], startedAt + 2.8);
}

TEST_F(CelebrationGlowControllerTest, buildsItsWindowOnce) {
  celebrate();
  celebrate();
  EXPECT_EQ(window.builds, std::vector{140.0});
}

TEST_F(CelebrationGlowControllerTest, withoutAMainScreenTheStateIsAnimatedAndTheNextTimeAsksAgain) {
  window.hasMainScreen = false;
  celebrate();
  EXPECT_TRUE(window.restTimes.empty());
  EXPECT_EQ(controller.state().intensity.shown(startedAt + 0.4), 0.55);

  window.hasMainScreen = true;
  celebrate();
  EXPECT_EQ(window.builds.size(), 2u);
  EXPECT_EQ(intensityAfter(0.4), 0.55);
}

TEST_F(CelebrationGlowControllerTest, aSecondFlashStartsFromNothing) {
  celebrate();
  scheduler.advance(1.0);
  celebrate(calm);
  EXPECT_EQ(shownAfter(0.0), (ports::GlowPicture{calm, 0.0}));
  EXPECT_EQ(shownAfter(0.4), (ports::GlowPicture{calm, 0.55}));
  EXPECT_EQ(intensityAfter(1.9), 0.55);  // the first one would have ended by then
  EXPECT_EQ(intensityAfter(2.8), 0.0);
}

}  // namespace
}  // namespace vorli
