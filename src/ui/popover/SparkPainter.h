#pragma once

#include "ambient/WhiteSparkShower.h"
#include "ui/popover/PopoverPalette.h"

#include <QImage>
#include <QPointF>
#include <QRect>

namespace vorli::ui {

/// Paints the sparks over opaque pixels: a white disc each, with its white shadow and, on paper, a calm glow
/// beneath, since white needs something to shine on. `centre` is the ring's, in device pixels.
void paintSparks(QImage& image, const QRect& clip, QPointF centre, double pixelRatio,
                 const WhiteSparkShower::Sparks& sparks, double opacity, Appearance appearance);

}  // namespace vorli::ui
