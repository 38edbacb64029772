#pragma once

#include "base/Colour.h"
#include "ui/kit/WindowPalette.h"
#include "ui/popover/VorliTheme.h"

#include <array>

namespace vorli::ui {

/// Offset, reach and opacity of one of the two shadows under the card.
struct CardShadow {
  double fall, reach, opacity;
};

/// Fill of a control at rest, under the pointer, and held down.
struct ControlColours {
  Colour rest, hover, pressed;
};

/// The glass in the ring: the opacity of its white by state, what is added to it at the top, its share at the
/// bottom, and the colours of the rim.
struct LensColours {
  double rest, hover, pressed;
  double topExtra, bottomShare;
  Colour rimTop, rimBottom;
};

/// The popover's colours, named by purpose: those of the theme, and those of paper, glass and plates.
struct PopoverPalette {
  Colour paperTop{}, paperBottom{};
  Colour outerHairline{}, innerHairlineTop{}, innerHairlineBottom{};
  Colour shadow{};
  std::array<CardShadow, 2> shadows{};

  Colour headline{}, aside{}, label{}, labelResting{};
  Colour culprit{}, name{}, nameHover{}, namePlate{};
  Colour gear{}, gearHover{}, track{}, bead{}, focus{};
  Colour banner{}, bannerPlate{};
  Colour link{}, linkHover{}, linkPlate{}, linkPlateHover{};
  ControlColours plate{}, quit{};
  Colour cancelText{}, quitText{};

  double haloStrength = 0.0, cloudShare = 0.0, bloomShare = 0.0;
  LensColours lens{};
  double sparkShadowShare = 0.0;
  Colour arcTailGround{};  // the colour that the arc's tail fades towards

  static const PopoverPalette& of(Appearance appearance);
};

inline VorliTheme themeOf(Appearance appearance) {
  return {.isDark = appearance == Appearance::dark};
}

}  // namespace vorli::ui
