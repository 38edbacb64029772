#pragma once

#include "ui/kit/WindowPalette.h"

#include <QImage>
#include <QPainterPath>
#include <QPointF>
#include <array>
#include <optional>

class QPainter;

namespace vorli::ui {

/// Look of one tick of the mark's dial.
struct MarkTick {
  QColor colour;
  double opacity = 1.0;
  double widthShare = 1.0;
};
using MarkTicks = std::array<MarkTick, 12>;  // clockwise from twelve o'clock

/// All ticks lit: the dial of a program that is ready.
MarkTicks litTicks(const WindowPalette& palette);

/// Lengths of the dial, as shares of its radius but for the width.
struct MarkDial {
  double radius = 0.0;
  double from = 0.0;
  double to = 0.0;
  double tickWidth = 0.0;
};
void paintMarkDial(QPainter& painter, const QPointF& centre, const MarkDial& dial, const MarkTicks& ticks);

/// The four-point star in the middle of the mark.
QPainterPath markStar(const QPointF& centre, double radius);

/// The program's mark: the status item's dial, all ticks lit, on a rounded square with a star in its middle.
/// The image is square, premultiplied, and transparent around the mark. The margin on every side has room for
/// the soft shadow, which is clipped where the margin ends. Thread-safe.
QImage appMarkImage(int sidePixels, int marginPixels, const WindowPalette& palette);

/// Like the above, with a dial and a star that show a state.
QImage appMarkImage(int sidePixels, int marginPixels, const WindowPalette& palette, const MarkTicks& ticks,
                    const QColor& star);

}  // namespace vorli::ui
