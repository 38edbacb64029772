#include "tests/fakes/ManualScheduler.h"
#include "ui/status/PictureThrottle.h"

#include <gtest/gtest.h>
#include <memory>
#include <vector>

namespace vorli::ui {
namespace {

ports::StatusPicture redPicture(double red) {
  return {18.0, {{9.0, 4.2, 9.0, 1.48, 1.6, {red, 0.5, 0.3, 1.0}}}};
}

struct PictureThrottleTest : testing::Test {
  /// Offers the same pictures as the program at its start.
  void offerEmptyDial() {
    throttle->offer(redPicture(0.0));
    sent.clear();
  }

  fakes::ManualScheduler scheduler;
  std::vector<double> sent;  // the red of each
  std::unique_ptr<PictureThrottle> throttle = std::make_unique<PictureThrottle>(
      scheduler,
      [this](const ports::StatusPicture& picture) { sent.push_back(picture.strokes[0].colour.red); });
};

TEST_F(PictureThrottleTest, theFirstPictureIsSentAtOnce) {
  throttle->offer(redPicture(0.2));
  EXPECT_EQ(sent, std::vector<double>{0.2});
}

TEST_F(PictureThrottleTest, theFirstRealDialDoesNotWaitBehindTheEmptyOne) {
  throttle->offer(redPicture(0.0));
  throttle->offer(redPicture(0.2));
  EXPECT_EQ(sent, (std::vector<double>{0.0, 0.2}));
  throttle->offer(redPicture(0.4));
  EXPECT_EQ(sent.size(), 2u);
  scheduler.advance(0.249);
  EXPECT_EQ(sent.size(), 2u);
  scheduler.advance(0.001);
  EXPECT_EQ(sent, (std::vector<double>{0.0, 0.2, 0.4}));
}

TEST_F(PictureThrottleTest, theSamePictureCostsNothing) {
  throttle->offer(redPicture(0.2));
  for (int i = 0; i < 100; ++i) {
    scheduler.advance(1.0);
    throttle->offer(redPicture(0.2));
  }
  EXPECT_EQ(sent.size(), 1u);
  EXPECT_EQ(scheduler.pendingTimers(), 0u);
}

TEST_F(PictureThrottleTest, invisibleDifferencesAreIgnored) {
  throttle->offer(redPicture(0.2));
  scheduler.advance(1.0);
  throttle->offer(redPicture(0.2001));
  EXPECT_EQ(sent.size(), 1u);
  throttle->offer(redPicture(0.2 + 1.0 / 255.0));
  EXPECT_EQ(sent.size(), 2u);
}

TEST_F(PictureThrottleTest, sendsOnePictureInAnIntervalAndTheNewestAtItsEnd) {
  offerEmptyDial();
  throttle->offer(redPicture(0.2));
  throttle->offer(redPicture(0.4));
  scheduler.advance(0.1);
  throttle->offer(redPicture(0.6));
  scheduler.advance(0.149);
  EXPECT_EQ(sent, std::vector<double>{0.2});
  scheduler.advance(0.001);
  EXPECT_EQ(sent, (std::vector<double>{0.2, 0.6}));
}

TEST_F(PictureThrottleTest, afterAQuietIntervalItIsSentAtOnce) {
  offerEmptyDial();
  throttle->offer(redPicture(0.2));
  scheduler.advance(PictureThrottle::intervalSeconds);
  throttle->offer(redPicture(0.4));
  EXPECT_EQ(sent, (std::vector<double>{0.2, 0.4}));
  EXPECT_EQ(scheduler.pendingTimers(), 0u);
}

TEST_F(PictureThrottleTest, aPictureThatWentBackInTimeIsNotSent) {
  offerEmptyDial();
  throttle->offer(redPicture(0.2));
  throttle->offer(redPicture(0.4));
  throttle->offer(redPicture(0.2));
  scheduler.advance(10.0);
  EXPECT_EQ(sent, std::vector<double>{0.2});
  throttle->offer(redPicture(0.4));
  EXPECT_EQ(sent, (std::vector<double>{0.2, 0.4}));
}

TEST_F(PictureThrottleTest, sixtyASecondBecomeFourASecondAndTheLastOneArrives) {
  offerEmptyDial();
  for (int frame = 0; frame < 600; ++frame) {
    throttle->offer(redPicture(frame / 1200.0));
    scheduler.advance(1.0 / 60.0);
  }
  EXPECT_LE(sent.size(), 41u);
  EXPECT_GE(sent.size(), 38u);
  scheduler.advance(PictureThrottle::intervalSeconds);
  EXPECT_NEAR(sent.back(), 599.0 / 1200.0, 0.5 / 255.0);
}

TEST_F(PictureThrottleTest, nothingIsSentAfterItsDestruction) {
  offerEmptyDial();
  throttle->offer(redPicture(0.2));
  throttle->offer(redPicture(0.4));
  throttle.reset();
  scheduler.advance(10.0);
  EXPECT_EQ(sent.size(), 1u);
}

}  // namespace
}  // namespace vorli::ui
