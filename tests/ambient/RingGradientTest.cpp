#include "ambient/RingGradient.h"
#include "tests/base/ExpectColour.h"

#include <limits>

namespace vorli {
namespace {

TEST(RingGradientTest, passesThroughItsSevenStops) {
  expectColour(ringGradientColour(0.0), {0.494, 0.82, 0.804});
  expectColour(ringGradientColour(0.22), {0.423, 0.659, 0.643});
  expectColour(ringGradientColour(0.4), {0.369, 0.796, 0.533});
  expectColour(ringGradientColour(0.56), {0.949, 0.769, 0.165});
  expectColour(ringGradientColour(0.74), {0.945, 0.525, 0.125});
  expectColour(ringGradientColour(0.9), {0.902, 0.235, 0.157});
  expectColour(ringGradientColour(1.0), {0.78, 0.247, 0.196});
}

TEST(RingGradientTest, blendsBetweenThem) {
  expectColour(ringGradientColour(0.11), {0.4585, 0.7395, 0.7235});
  expectColour(ringGradientColour(0.95), {0.841, 0.241, 0.1765});
  expectColour(ringGradientColour(0.3), {0.399, 0.7198888888888889, 0.5941111111111111});
}

TEST(RingGradientTest, keepsItsEndColoursOutsideItsRange) {
  expectColour(ringGradientColour(-0.5), {0.494, 0.82, 0.804});
  expectColour(ringGradientColour(1.5), {0.78, 0.247, 0.196});
  expectColour(ringGradientColour(std::numeric_limits<double>::infinity()), {0.78, 0.247, 0.196});
}

// Six decimals of the expected colours are given.
void expectDisplayed(const Colour& colour, const Colour& expected) {
  expectColour(colour, expected, 1e-6);
}

TEST(RingDisplayColourTest, theHourTintsTheColour) {
  for (const int hour : {6, 9})
    expectDisplayed(ringDisplayColour(0.3, hour, 0.0), {0.4047, 0.725896, 0.606704});
  for (const int hour : {10, 15})
    expectDisplayed(ringDisplayColour(0.3, hour, 0.0), {0.399, 0.719889, 0.594111});
  for (const int hour : {16, 18, 20}) {
    expectDisplayed(ringDisplayColour(0.3, hour, 0.0), {0.43176, 0.708196, 0.565964});
  }
  for (const int hour : {21, 23, 0, 5}) {
    expectDisplayed(ringDisplayColour(0.3, hour, 0.0), {0.391, 0.707044, 0.586756});
  }
}

TEST(RingDisplayColourTest, theCalmDrawsItTowardsItsOwnColour) {
  expectDisplayed(ringDisplayColour(0.3, 12, 0.5), {0.411, 0.689444, 0.618556});
  expectDisplayed(ringDisplayColour(0.9, 12, 1.0), {0.423, 0.659, 0.643});
  EXPECT_EQ(ringDisplayColour(0.9, 12, 0.0009), ringDisplayColour(0.9, 12, 0.0));
  EXPECT_NE(ringDisplayColour(0.9, 12, 0.001), ringDisplayColour(0.9, 12, 0.0));
}

}  // namespace
}  // namespace vorli
