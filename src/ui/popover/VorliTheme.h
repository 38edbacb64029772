#pragma once

#include "base/Colour.h"

namespace vorli::ui {

/// Colours of the popover; all follow from whether it is dark.
struct VorliTheme {
  bool isDark = false;

  // Ends of the card's vertical gradient, which spans its greatest height.
  Colour cardTop() const;
  Colour cardBottom() const;

  Colour headline() const;
  Colour aside() const;
  Colour polishReady() const;
  Colour polishResting() const;
  Colour culpritText() const;
  Colour chip() const;
  Colour chipHovered() const;
  /// Plate behind a hovered chip.
  Colour chipPlate() const;
  Colour banner() const;
  Colour link() const;
  Colour linkHovered() const;
  /// Colour of the focus ring, the banner's plate and the link's plate, before their opacity.
  Colour accent() const;

  /// The colour of the ring's arc and dots: `stateColor`, darkened on paper and lightened on charcoal, so
  /// that every stop of the gradient has a contrast of at least 3 : 1 with the card.
  Colour ringInk(const Colour& stateColor) const;

  bool operator==(const VorliTheme&) const = default;
};

}  // namespace vorli::ui
