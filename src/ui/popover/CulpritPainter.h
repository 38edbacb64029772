#pragma once

#include "ui/popover/PopoverLayout.h"
#include "ui/popover/PopoverPalette.h"

#include <span>

class QPainter;

namespace vorli::ui {

/// The sentence of who uses the most memory, with its names as they are hovered, pressed and focused.
void paintCulprits(QPainter& painter, const PlacedCulprits& culprits, std::span<const ControlPicture> names,
                   const PopoverPalette& palette);

}  // namespace vorli::ui
