#pragma once

#include "ui/popover/PopoverLayout.h"
#include "ui/popover/PopoverPalette.h"

class QPainter;

namespace vorli::ui {

void paintBanner(QPainter& painter, const PlacedLabel& banner, const PopoverPalette& palette);

/// Paints the capsule that opens the settings, with its arrow in `symbol`.
void paintLink(QPainter& painter, const PlacedLabel& link, const QRectF& symbol, const ControlPicture& state,
               const PopoverPalette& palette);

/// Paints the question whether to quit an application, with its two buttons.
void paintQuit(QPainter& painter, const PlacedQuit& placed, const QuitPicture& picture,
               const PopoverPalette& palette);

void paintGear(QPainter& painter, const ControlPicture& state, const PopoverPalette& palette);

}  // namespace vorli::ui
