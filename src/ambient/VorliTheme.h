#pragma once

#include "base/Colour.h"

namespace vorli {

/// The colours of the popover: everything follows from whether it is dark.
struct VorliTheme {
  bool isDark = false;

  // The card, a vertical gradient over its greatest height.
  Colour cardTop() const;
  Colour cardBottom() const;

  Colour headline() const;
  Colour aside() const;
  Colour polishReady() const;
  Colour polishResting() const;
  Colour culpritText() const;
  Colour chip() const;
  Colour chipHovered() const;
  /// Behind a hovered chip.
  Colour chipPlate() const;
  Colour banner() const;
  Colour link() const;
  Colour linkHovered() const;
  /// Of the focus ring, the banner's plate and the link's, before their opacity.
  Colour accent() const;

  /// The colour of the ring's arc and dots: `stateColor`, darkened on paper and lightened on charcoal so far
  /// that every stop of the gradient has a contrast of 3 : 1 with the card.
  Colour ringInk(const Colour& stateColor) const;

  bool operator==(const VorliTheme&) const = default;
};

}  // namespace vorli
