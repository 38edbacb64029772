#pragma once

#include "ui/popover/PopoverLayout.h"
#include "ui/popover/PopoverPalette.h"

#include <span>

class QPainter;

namespace vorli::ui {

/// Paints the sentence that names the applications with the most memory. `names` are the states of its names:
/// hovered, pressed, focused. The words beside a highlighted name move aside for its plate.
void paintCulprits(QPainter& painter, const PlacedCulprits& culprits, std::span<const ControlPicture> names,
                   const PopoverPalette& palette);

}  // namespace vorli::ui
