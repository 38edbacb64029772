#pragma once

#include "ui/popover/PopoverPalette.h"

#include <QImage>
#include <QMargins>
#include <QSizeF>

namespace vorli::ui {

/// Draws the soft shadows of a card with round corners of `radius`. The image reaches beyond the card by
/// `around`, all in points; where the card covers it, it may be empty. The opacities are summed with
/// fractions and dithered once, so that the shadow shows no terraces.
QImage cardShadow(const QSizeF& card, double radius, const QMargins& around, const PopoverPalette& palette,
                  double pixelRatio);

}  // namespace vorli::ui
