#include "tests/ui/popover/Palettes.h"
#include "ui/popover/PopoverPalette.h"

#include <gtest/gtest.h>

namespace vorli::ui {
namespace {

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
  EXPECT_EQ(lightPopover.paperTop, (Colour{0.992, 0.984, 0.969}));
  EXPECT_EQ(lightPopover.paperBottom, (Colour{0.969, 0.953, 0.929}));
  EXPECT_EQ(darkPopover.paperTop, (Colour{0.161, 0.153, 0.145}));
  EXPECT_EQ(darkPopover.paperBottom, (Colour{0.114, 0.110, 0.106}));
  EXPECT_EQ(lightPopover.outerHairline, brown(0.20));
  EXPECT_EQ(darkPopover.outerHairline, (Colour{0.0, 0.0, 0.0, 0.42}));
}

TEST(PopoverPalette, wordsHaveTheirColours) {
  EXPECT_EQ(lightPopover.headline, ink);
  EXPECT_EQ(darkPopover.headline, cream);
  EXPECT_EQ(lightPopover.aside, (Colour{0.29, 0.29, 0.306}));
  EXPECT_EQ(darkPopover.aside, (Colour{0.80, 0.788, 0.765}));
  EXPECT_EQ(lightPopover.label, ink);
  EXPECT_EQ(darkPopover.label, (Colour{0.965, 0.957, 0.941}));
  EXPECT_EQ(lightPopover.labelResting, (Colour{0.38, 0.373, 0.369}));
  EXPECT_EQ(darkPopover.labelResting, (Colour{0.843, 0.835, 0.816}));
  EXPECT_EQ(lightPopover.culprit, (Colour{0.29, 0.29, 0.306}));
  EXPECT_EQ(darkPopover.culprit, white(0.66));
  EXPECT_EQ(lightPopover.name, (Colour{0.227, 0.184, 0.141}));
  EXPECT_EQ(darkPopover.name, (Colour{0.91, 0.875, 0.816}));
  EXPECT_EQ(lightPopover.nameHover, ink);
  EXPECT_EQ(darkPopover.nameHover, (Colour{0.949, 0.949, 0.969}));
  EXPECT_EQ(lightPopover.namePlate, (Colour{0.227, 0.184, 0.141, 0.16}));
  EXPECT_EQ(darkPopover.namePlate, (Colour{0.91, 0.875, 0.816, 0.16}));
}

TEST(PopoverPalette, controlsHaveTheirColours) {
  EXPECT_EQ(lightPopover.gear, (Colour{0.40, 0.392, 0.388}));
  EXPECT_EQ(darkPopover.gear, (Colour{0.627, 0.62, 0.604}));
  EXPECT_EQ(lightPopover.gearHover, ink);
  EXPECT_EQ(darkPopover.gearHover, cream);
  EXPECT_EQ(lightPopover.plate.rest, brown(0.14));
  EXPECT_EQ(lightPopover.plate.hover, brown(0.22));
  EXPECT_EQ(lightPopover.plate.pressed, brown(0.30));
  EXPECT_EQ(darkPopover.plate.rest, white(0.10));
  EXPECT_EQ(darkPopover.plate.hover, white(0.16));
  EXPECT_EQ(darkPopover.plate.pressed, white(0.07));
  EXPECT_EQ(lightPopover.quit.rest, (Colour{0.227, 0.184, 0.141}));
  EXPECT_EQ(lightPopover.quit.hover, (Colour{0.165, 0.133, 0.102}));
  EXPECT_EQ(lightPopover.quit.pressed, (Colour{0.102, 0.082, 0.063}));
  EXPECT_EQ(darkPopover.quit.rest, (Colour{0.91, 0.875, 0.816}));
  EXPECT_EQ(darkPopover.quit.hover, (Colour{0.965, 0.937, 0.886}));
  EXPECT_EQ(darkPopover.quit.pressed, (Colour{0.80, 0.765, 0.706}));
  EXPECT_EQ(lightPopover.cancelText, ink);
  EXPECT_EQ(darkPopover.cancelText, cream);
  EXPECT_EQ(lightPopover.quitText, (Colour{0.992, 0.984, 0.969}));
  EXPECT_EQ(darkPopover.quitText, ink);
  EXPECT_EQ(lightPopover.focus, calmForLight());
  EXPECT_EQ(darkPopover.focus, teal());
}

TEST(PopoverPalette, bannerAndLinkAreCalm) {
  EXPECT_EQ(lightPopover.banner, (Colour{0.184, 0.396, 0.38}));
  EXPECT_EQ(darkPopover.banner, teal());
  EXPECT_EQ(lightPopover.bannerPlate, calmForLight(0.13));
  EXPECT_EQ(darkPopover.bannerPlate, teal(0.13));
  EXPECT_EQ(lightPopover.link, (Colour{0.196, 0.408, 0.392}));
  EXPECT_EQ(darkPopover.link, teal());
  EXPECT_EQ(lightPopover.linkHover, (Colour{0.141, 0.329, 0.318}));
  EXPECT_EQ(darkPopover.linkHover, (Colour{0.64, 0.90, 0.885}));
  EXPECT_EQ(lightPopover.linkPlate, calmForLight(0.10));
  EXPECT_EQ(darkPopover.linkPlate, teal(0.11));
  EXPECT_EQ(lightPopover.linkPlateHover, calmForLight(0.18));
  EXPECT_EQ(darkPopover.linkPlateHover, teal(0.19));
}

TEST(PopoverPalette, ringHasItsTrackAndBead) {
  EXPECT_EQ(lightPopover.track, brown(0.16));
  EXPECT_EQ(darkPopover.track, white(0.10));
  EXPECT_EQ(lightPopover.bead, white(0.95));
  EXPECT_EQ(darkPopover.bead, white(0.85));
  EXPECT_EQ(lightPopover.arcTailGround, lightPopover.paperTop);
  EXPECT_EQ(darkPopover.arcTailGround, darkPopover.paperBottom);
}

}  // namespace
}  // namespace vorli::ui
