#pragma once

#include "ambient/WhiteSparkShower.h"
#include "ui/popover/PopoverPalette.h"

#include <QImage>
#include <QPointF>
#include <QRect>

namespace vorli::ui {

/// Paints the sparks over opaque pixels. Each one is a white disc with a white shadow and, on light paper, a
/// calm glow beneath, because white needs something to shine on. `centre` is the ring's, in device pixels.
void paintSparks(QImage& image, const QRect& clip, QPointF centre, double pixelRatio,
                 const WhiteSparkShower::Sparks& sparks, double opacity, Appearance appearance);

}  // namespace vorli::ui
