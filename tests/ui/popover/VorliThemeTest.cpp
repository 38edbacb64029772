#include "ambient/RingGradient.h"
#include "ui/popover/VorliTheme.h"

#include <cmath>

namespace vorli::ui {
namespace {

constexpr VorliTheme light{.isDark = false};
constexpr VorliTheme dark{.isDark = true};

double linear(double component) {
  return component <= 0.03928 ? component / 12.92 : std::pow((component + 0.055) / 1.055, 2.4);
}
double luminance(const Colour& colour) {
  return 0.2126 * linear(colour.red) + 0.7152 * linear(colour.green) + 0.0722 * linear(colour.blue);
}
double contrast(const Colour& a, const Colour& b) {
  const double first = luminance(a), second = luminance(b);
  return (std::max(first, second) + 0.05) / (std::min(first, second) + 0.05);
}

TEST(VorliThemeTest, culpritsHaveTheirOwnColours) {
  EXPECT_EQ(light.culpritText(), (Colour{0.29, 0.29, 0.306}));
  EXPECT_EQ(dark.culpritText(), (Colour{1.0, 1.0, 1.0, 0.66}));
  EXPECT_EQ(light.chip(), (Colour{0.227, 0.184, 0.141}));
  EXPECT_EQ(dark.chip(), (Colour{0.91, 0.875, 0.816}));
  EXPECT_EQ(light.chipHovered(), (Colour{0.102, 0.102, 0.11}));
  EXPECT_EQ(dark.chipHovered(), (Colour{0.949, 0.949, 0.969}));
  EXPECT_EQ(light.chipPlate(), (Colour{0.227, 0.184, 0.141, 0.16}));
  EXPECT_EQ(dark.chipPlate(), (Colour{0.91, 0.875, 0.816, 0.16}));
}

TEST(VorliThemeTest, textIsReadableOnTheCard) {
  for (const auto& theme : {light, dark}) {
    for (const auto& text :
         {theme.headline(), theme.aside(), theme.polishReady(), theme.polishResting(), theme.chip(),
          theme.chipHovered(), theme.banner(), theme.link(), theme.linkHovered()}) {
      EXPECT_GE(contrast(text, theme.cardTop()), 4.5);
      EXPECT_GE(contrast(text, theme.cardBottom()), 4.5);
    }
  }
}

TEST(VorliThemeTest, theRingKeepsAContrastOfThreeAtEveryProgress) {
  for (int percent = 0; percent <= 100; ++percent) {
    const Colour state = ringGradientColour(percent / 100.0);
    EXPECT_GE(contrast(light.ringInk(state), light.cardTop()), 3.0) << percent;
    EXPECT_GE(contrast(dark.ringInk(state), dark.cardTop()), 3.0) << percent;
  }
}

TEST(VorliThemeTest, theRingsInkIsTheStatesColourMadeDarkerOrLighter) {
  const Colour yellow{0.949, 0.769, 0.165};  // luma 0.753964
  const Colour onPaper = light.ringInk(yellow);
  EXPECT_NEAR(onPaper.red, 0.949 * 0.666036, 1e-6);
  EXPECT_NEAR(onPaper.green, 0.769 * 0.666036, 1e-6);
  EXPECT_NEAR(onPaper.blue, 0.165 * 0.666036, 1e-6);
  EXPECT_EQ(dark.ringInk(yellow), yellow);
  const Colour deepRed{0.78, 0.247, 0.196};  // luma 0.400553
  EXPECT_EQ(light.ringInk(deepRed), deepRed);
  EXPECT_NEAR(dark.ringInk(deepRed).green, 0.247 + 0.75 * 0.039447 * 0.753, 1e-6);
}

}  // namespace
}  // namespace vorli::ui
