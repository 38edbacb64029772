#include "base/Colour.h"

namespace vorli {
namespace {

constexpr Colour from{0.2, 0.4, 0.6, 0.5};
constexpr Colour to{0.6, 0.0, 1.0, 0.25};

void expectNear(const Colour& colour, const Colour& expected) {
  EXPECT_DOUBLE_EQ(colour.red, expected.red);
  EXPECT_DOUBLE_EQ(colour.green, expected.green);
  EXPECT_DOUBLE_EQ(colour.blue, expected.blue);
  EXPECT_DOUBLE_EQ(colour.alpha, expected.alpha);
}

TEST(ColourTest, aBlendIsLinearInItsComponentsAndOpaque) {
  expectNear(blend(from, to, 0.0), {0.2, 0.4, 0.6, 1.0});
  expectNear(blend(from, to, 0.25), {0.3, 0.3, 0.7, 1.0});
  expectNear(blend(from, to, 0.5), {0.4, 0.2, 0.8, 1.0});
  expectNear(blend(from, to, 1.0), {0.6, 0.0, 1.0, 1.0});
}

TEST(ColourTest, theFactorIsClamped) {
  EXPECT_EQ(blend(from, to, -0.5), blend(from, to, 0.0));
  EXPECT_EQ(blend(from, to, 1.5), blend(from, to, 1.0));
}

TEST(ColourTest, withAlphaChangesTheAlphaAlone) {
  EXPECT_EQ(from.withAlpha(0.125), (Colour{0.2, 0.4, 0.6, 0.125}));
  EXPECT_EQ(Colour(), (Colour{0.0, 0.0, 0.0, 1.0}));
}

}  // namespace
}  // namespace vorli
