#pragma once

#include <QColor>
#include <QImage>
#include <QPainterPath>
#include <QTransform>

namespace vorli::ui {

/// The shape filled with `colour` and blurred by a bell curve of that deviation, in the shape's own unit, as
/// an image of `size` pixels on a clear ground.
QImage softShadow(const QPainterPath& shape, double deviation, const QColor& colour, const QSize& size,
                  const QTransform& toPixels);

}  // namespace vorli::ui
