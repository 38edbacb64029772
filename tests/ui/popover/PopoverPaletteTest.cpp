#include "ui/popover/PopoverPalette.h"

#include <gtest/gtest.h>

namespace vorli::ui {
namespace {

const PopoverPalette& light = PopoverPalette::of(Appearance::light);
const PopoverPalette& dark = PopoverPalette::of(Appearance::dark);

Colour brown(double opacity) {
  return {0.549, 0.431, 0.275, opacity};
}
Colour white(double opacity) {
  return {1.0, 1.0, 1.0, opacity};
}
Colour teal(double opacity = 1.0) {
  return {0.494, 0.82, 0.804, opacity};
}
Colour calmForLight(double opacity = 1.0) {
  return {0.239, 0.463, 0.447, opacity};
}
constexpr Colour ink{0.102, 0.102, 0.11};
constexpr Colour cream{0.949, 0.941, 0.925};

TEST(PopoverPalette, cardIsWarmPaperOrWarmCharcoal) {
  EXPECT_EQ(light.paperTop, (Colour{0.992, 0.984, 0.969}));
  EXPECT_EQ(light.paperBottom, (Colour{0.969, 0.953, 0.929}));
  EXPECT_EQ(dark.paperTop, (Colour{0.161, 0.153, 0.145}));
  EXPECT_EQ(dark.paperBottom, (Colour{0.114, 0.110, 0.106}));
  EXPECT_EQ(light.outerHairline, brown(0.20));
  EXPECT_EQ(dark.outerHairline, (Colour{0.0, 0.0, 0.0, 0.42}));
}

TEST(PopoverPalette, wordsHaveTheirColours) {
  EXPECT_EQ(light.headline, ink);
  EXPECT_EQ(dark.headline, cream);
  EXPECT_EQ(light.aside, (Colour{0.29, 0.29, 0.306}));
  EXPECT_EQ(dark.aside, (Colour{0.80, 0.788, 0.765}));
  EXPECT_EQ(light.label, ink);
  EXPECT_EQ(dark.label, (Colour{0.965, 0.957, 0.941}));
  EXPECT_EQ(light.labelResting, (Colour{0.38, 0.373, 0.369}));
  EXPECT_EQ(dark.labelResting, (Colour{0.843, 0.835, 0.816}));
  EXPECT_EQ(light.culprit, (Colour{0.29, 0.29, 0.306}));
  EXPECT_EQ(dark.culprit, white(0.66));
  EXPECT_EQ(light.name, (Colour{0.227, 0.184, 0.141}));
  EXPECT_EQ(dark.name, (Colour{0.91, 0.875, 0.816}));
  EXPECT_EQ(light.nameHover, ink);
  EXPECT_EQ(dark.nameHover, (Colour{0.949, 0.949, 0.969}));
  EXPECT_EQ(light.namePlate, (Colour{0.227, 0.184, 0.141, 0.16}));
  EXPECT_EQ(dark.namePlate, (Colour{0.91, 0.875, 0.816, 0.16}));
}

TEST(PopoverPalette, controlsHaveTheirColours) {
  EXPECT_EQ(light.gear, (Colour{0.40, 0.392, 0.388}));
  EXPECT_EQ(dark.gear, (Colour{0.627, 0.62, 0.604}));
  EXPECT_EQ(light.gearHover, ink);
  EXPECT_EQ(dark.gearHover, cream);
  EXPECT_EQ(light.plate.rest, brown(0.14));
  EXPECT_EQ(light.plate.hover, brown(0.22));
  EXPECT_EQ(light.plate.pressed, brown(0.30));
  EXPECT_EQ(dark.plate.rest, white(0.10));
  EXPECT_EQ(dark.plate.hover, white(0.16));
  EXPECT_EQ(dark.plate.pressed, white(0.07));
  EXPECT_EQ(light.quit.rest, (Colour{0.227, 0.184, 0.141}));
  EXPECT_EQ(light.quit.hover, (Colour{0.165, 0.133, 0.102}));
  EXPECT_EQ(light.quit.pressed, (Colour{0.102, 0.082, 0.063}));
  EXPECT_EQ(dark.quit.rest, (Colour{0.91, 0.875, 0.816}));
  EXPECT_EQ(dark.quit.hover, (Colour{0.965, 0.937, 0.886}));
  EXPECT_EQ(dark.quit.pressed, (Colour{0.80, 0.765, 0.706}));
  EXPECT_EQ(light.cancelText, ink);
  EXPECT_EQ(dark.cancelText, cream);
  EXPECT_EQ(light.quitText, (Colour{0.992, 0.984, 0.969}));
  EXPECT_EQ(dark.quitText, ink);
  EXPECT_EQ(light.focus, calmForLight());
  EXPECT_EQ(dark.focus, teal());
}

TEST(PopoverPalette, bannerAndLinkAreCalm) {
  EXPECT_EQ(light.banner, (Colour{0.184, 0.396, 0.38}));
  EXPECT_EQ(dark.banner, teal());
  EXPECT_EQ(light.bannerPlate, calmForLight(0.13));
  EXPECT_EQ(dark.bannerPlate, teal(0.13));
  EXPECT_EQ(light.link, (Colour{0.196, 0.408, 0.392}));
  EXPECT_EQ(dark.link, teal());
  EXPECT_EQ(light.linkHover, (Colour{0.141, 0.329, 0.318}));
  EXPECT_EQ(dark.linkHover, (Colour{0.64, 0.90, 0.885}));
  EXPECT_EQ(light.linkPlate, calmForLight(0.10));
  EXPECT_EQ(dark.linkPlate, teal(0.11));
  EXPECT_EQ(light.linkPlateHover, calmForLight(0.18));
  EXPECT_EQ(dark.linkPlateHover, teal(0.19));
}

TEST(PopoverPalette, ringHasItsTrackAndBead) {
  EXPECT_EQ(light.track, brown(0.16));
  EXPECT_EQ(dark.track, white(0.10));
  EXPECT_EQ(light.bead, white(0.95));
  EXPECT_EQ(dark.bead, white(0.85));
  EXPECT_EQ(light.arcTailGround, light.paperTop);
  EXPECT_EQ(dark.arcTailGround, dark.paperBottom);
}

}  // namespace
}  // namespace vorli::ui
