#pragma once

#include "ambient/VorliTheme.h"
#include "base/Colour.h"
#include "ui/WindowPalette.h"

#include <array>

namespace vorli::ui {

/// One of the stacked shadows under the card: how far it falls, how far it reaches, how dark it is.
struct CardShadow {
  double fall, reach, opacity;
};

/// Fill of a control at rest, under the pointer, and held down.
struct ControlColours {
  Colour rest, hover, pressed;
};

/// The glass in the ring: white, its opacity at the top by state, and what the gradient does below.
struct LensColours {
  double rest, hover, pressed;
  double topExtra, bottomShare;
  Colour rimTop, rimBottom;
};

/// The popover's colours, by what they are for: the theme's, and those of paper, glass and plates.
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
  Colour arcTailGround{};  // towards which the arc's tail pales

  static const PopoverPalette& of(Appearance appearance);
};

inline VorliTheme themeOf(Appearance appearance) {
  return {.isDark = appearance == Appearance::dark};
}

}  // namespace vorli::ui
