#include "base/Colour.h"
#include "tests/base/ExpectColour.h"

namespace vorli {
namespace {

constexpr Colour from{0.2, 0.4, 0.6, 0.5};
constexpr Colour to{0.6, 0.0, 1.0, 0.25};

TEST(ColourTest, aBlendIsLinearInItsComponentsAndOpaque) {
  expectColour(blend(from, to, 0.0), {0.2, 0.4, 0.6, 1.0});
  expectColour(blend(from, to, 0.25), {0.3, 0.3, 0.7, 1.0});
  expectColour(blend(from, to, 0.5), {0.4, 0.2, 0.8, 1.0});
  expectColour(blend(from, to, 1.0), {0.6, 0.0, 1.0, 1.0});
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
