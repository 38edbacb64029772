#pragma once

#include <QColor>
#include <QImage>
#include <QPainter>
#include <QPainterPath>
#include <QRectF>
#include <QSize>
#include <QTransform>

namespace vorli::ui {

/// Fills the shape with `colour` and blurs it with a Gaussian of standard deviation `deviation`, in the
/// shape's own units. Returns a transparent image of `size` pixels with the result.
QImage softShadow(const QPainterPath& shape, double deviation, const QColor& colour, const QSize& size,
                  const QTransform& toPixels);

/// A rectangle with round corners, in points.
struct RoundedRectangle {
  QRectF place;
  double radius;
};

/// Draws the soft shadow of a rounded rectangle over a picture of `size` pixels, with `ratio` pixels a point.
/// `painter` draws in pixels. Blurs only the corners and stretches what lies between them, so that a large
/// window costs no more than a small one.
void drawSoftShadow(QPainter& painter, const RoundedRectangle& shape, double deviation, const QColor& colour,
                    const QSize& size, double ratio);

}  // namespace vorli::ui
