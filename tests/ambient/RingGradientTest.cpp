#include "ambient/RingGradient.h"

#include <limits>

namespace vorli {
namespace {

void expectColour(const Colour& colour, double red, double green, double blue) {
  EXPECT_NEAR(colour.red, red, 1e-9);
  EXPECT_NEAR(colour.green, green, 1e-9);
  EXPECT_NEAR(colour.blue, blue, 1e-9);
  EXPECT_EQ(colour.alpha, 1.0);
}

TEST(RingGradientTest, passesThroughItsSevenStops) {
  expectColour(ringGradientColour(0.0), 0.494, 0.82, 0.804);
  expectColour(ringGradientColour(0.22), 0.423, 0.659, 0.643);
  expectColour(ringGradientColour(0.4), 0.369, 0.796, 0.533);
  expectColour(ringGradientColour(0.56), 0.949, 0.769, 0.165);
  expectColour(ringGradientColour(0.74), 0.945, 0.525, 0.125);
  expectColour(ringGradientColour(0.9), 0.902, 0.235, 0.157);
  expectColour(ringGradientColour(1.0), 0.78, 0.247, 0.196);
}

TEST(RingGradientTest, blendsBetweenThem) {
  expectColour(ringGradientColour(0.11), 0.4585, 0.7395, 0.7235);
  expectColour(ringGradientColour(0.95), 0.841, 0.241, 0.1765);
  expectColour(ringGradientColour(0.3), 0.399, 0.7198888888888889, 0.5941111111111111);
}

TEST(RingGradientTest, keepsItsEndsOutside) {
  expectColour(ringGradientColour(-0.5), 0.494, 0.82, 0.804);
  expectColour(ringGradientColour(1.5), 0.78, 0.247, 0.196);
  expectColour(ringGradientColour(std::numeric_limits<double>::infinity()), 0.78, 0.247, 0.196);
}

void expectNear(const Colour& colour, double red, double green, double blue) {
  EXPECT_NEAR(colour.red, red, 1e-6);
  EXPECT_NEAR(colour.green, green, 1e-6);
  EXPECT_NEAR(colour.blue, blue, 1e-6);
  EXPECT_EQ(colour.alpha, 1.0);
}

TEST(RingDisplayColourTest, theHourTintsTheColour) {
  for (const int hour : {6, 9}) expectNear(ringDisplayColour(0.3, hour, 0.0), 0.4047, 0.725896, 0.606704);
  for (const int hour : {10, 15}) expectNear(ringDisplayColour(0.3, hour, 0.0), 0.399, 0.719889, 0.594111);
  for (const int hour : {16, 18, 20}) {
    expectNear(ringDisplayColour(0.3, hour, 0.0), 0.43176, 0.708196, 0.565964);
  }
  for (const int hour : {21, 23, 0, 5}) {
    expectNear(ringDisplayColour(0.3, hour, 0.0), 0.391, 0.707044, 0.586756);
  }
}

TEST(RingDisplayColourTest, theCalmDrawsItTowardsItsOwnColour) {
  expectNear(ringDisplayColour(0.3, 12, 0.5), 0.411, 0.689444, 0.618556);
  expectNear(ringDisplayColour(0.9, 12, 1.0), 0.423, 0.659, 0.643);
  EXPECT_EQ(ringDisplayColour(0.9, 12, 0.0009), ringDisplayColour(0.9, 12, 0.0));
  EXPECT_NE(ringDisplayColour(0.9, 12, 0.001), ringDisplayColour(0.9, 12, 0.0));
}

}  // namespace
}  // namespace vorli
