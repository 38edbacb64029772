#include "ui/popover/PopoverPalette.h"

#include "ambient/Palette.h"

namespace vorli::ui {
namespace {

void addTheme(PopoverPalette& colours, Appearance appearance) {
  const VorliTheme theme = themeOf(appearance);
  colours.paperTop = theme.cardTop();
  colours.paperBottom = theme.cardBottom();
  colours.headline = theme.headline();
  colours.aside = theme.aside();
  colours.label = theme.polishReady();
  colours.labelResting = theme.polishResting();
  colours.culprit = theme.culpritText();
  colours.name = theme.chip();
  colours.quit.rest = theme.chip();
  colours.nameHover = theme.chipHovered();
  colours.namePlate = theme.chipPlate();
  colours.gearHover = theme.headline();
  colours.focus = theme.accent();
  colours.banner = theme.banner();
  colours.link = theme.link();
  colours.linkHover = theme.linkHovered();
  colours.cancelText = theme.headline();
}

PopoverPalette makeLightPopover() {
  constexpr Colour accent = palette::calmForLight;
  PopoverPalette light{
      .outerHairline = palette::brown.withAlpha(0.20),
      .innerHairlineTop = palette::white.withAlpha(0.95),
      .innerHairlineBottom = palette::white.withAlpha(0.30),
      .shadow = {0.22, 0.17, 0.11},
      .shadows = {{{2.0, 4.0, 0.10}, {10.0, 22.0, 0.17}}},
      .gear = {0.40, 0.392, 0.388},
      .track = palette::brown.withAlpha(0.16),
      .bead = palette::white.withAlpha(0.95),
      .bannerPlate = accent.withAlpha(0.13),
      .linkPlate = accent.withAlpha(0.10),
      .linkPlateHover = accent.withAlpha(0.18),
      .plate = {palette::brown.withAlpha(0.14), palette::brown.withAlpha(0.22),
                palette::brown.withAlpha(0.30)},
      .quit = {{}, {0.165, 0.133, 0.102}, {0.102, 0.082, 0.063}},
      .haloStrength = 0.17,
      .cloudShare = 0.64,
      .bloomShare = 1.0,
      .lens = {0.62, 0.82, 0.34, 0.12, 0.55, palette::white.withAlpha(0.95), palette::brown.withAlpha(0.22)},
      .sparkShadowShare = 0.55,
  };
  addTheme(light, Appearance::light);
  light.quitText = light.arcTailGround = light.paperTop;
  return light;
}

PopoverPalette makeDarkPopover() {
  constexpr Colour accent = palette::teal;
  PopoverPalette dark{
      .outerHairline = palette::black.withAlpha(0.42),
      .innerHairlineTop = palette::white.withAlpha(0.16),
      .innerHairlineBottom = palette::white.withAlpha(0.05),
      .shadow = palette::black,
      .shadows = {{{2.0, 4.0, 0.34}, {10.0, 22.0, 0.42}}},
      .gear = palette::mutedInkForDark,
      .track = palette::white.withAlpha(0.10),
      .bead = palette::white.withAlpha(0.85),
      .bannerPlate = accent.withAlpha(0.13),
      .linkPlate = accent.withAlpha(0.11),
      .linkPlateHover = accent.withAlpha(0.19),
      .plate = {palette::white.withAlpha(0.10), palette::white.withAlpha(0.16),
                palette::white.withAlpha(0.07)},
      .quit = {{}, {0.965, 0.937, 0.886}, {0.80, 0.765, 0.706}},
      .quitText = palette::ink,
      .haloStrength = 0.24,
      .cloudShare = 0.58,
      .bloomShare = 0.85,
      .lens = {0.09, 0.13, 0.05, 0.03, 0.45, palette::white.withAlpha(0.22), palette::white.withAlpha(0.03)},
      .sparkShadowShare = 1.0,
  };
  addTheme(dark, Appearance::dark);
  dark.arcTailGround = dark.paperBottom;
  return dark;
}

}  // namespace

const PopoverPalette& PopoverPalette::of(Appearance appearance) {
  static const PopoverPalette light = makeLightPopover();
  static const PopoverPalette dark = makeDarkPopover();
  return appearance == Appearance::dark ? dark : light;
}

}  // namespace vorli::ui
