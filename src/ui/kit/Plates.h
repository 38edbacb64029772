#pragma once

#include "ui/kit/WindowPalette.h"

#include <QPainter>
#include <QRectF>
#include <QString>
#include <array>
#include <string_view>

namespace vorli::ui {

/// Tone of a plate behind a symbol or a text.
enum class Tone { plain, lit, amber, red };

/// Paints a rounded plate with a hairline inside its edge. A clear `lip` paints no light on the upper edge.
void paintPlate(QPainter& painter, const QRectF& shape, double radius, const QBrush& fill, const QColor& line,
                const QColor& lip = Qt::transparent);

/// Paints a small soft shadow below a rounded shape. Call it before painting the shape.
void paintSmallShadow(QPainter& painter, const QRectF& shape, double radius, const QColor& colour);

/// Shade below the upper edge inside a shape: the sum of one layer for each depth.
struct InnerShadow {
  std::array<double, 3> depths;
  int alpha;  // of one layer
};
void paintInnerShadow(QPainter& painter, const QRectF& shape, double radius, const InnerShadow& shadow);

/// Opacity of a control that is disabled.
constexpr double disabledOpacity = 0.42;

/// Paints the plate of a group of rows.
void paintCard(QPainter& painter, const QRectF& shape, const WindowPalette& palette);
constexpr double cardRadius = 14.0;

/// Paints a rounded tile with a symbol in its middle.
void paintIconTile(QPainter& painter, const QRectF& tile, std::string_view symbol, double symbolSide,
                   Tone tone, const WindowPalette& palette);

/// Paints the short label LEFTOVER, NEW or DISABLED; `plain` has an outline only.
void paintBadge(QPainter& painter, const QPointF& corner, const QString& text, Tone tone, const QColor& ink,
                const WindowPalette& palette);
/// The usual colour of a badge's text.
QColor badgeInk(Tone tone, const WindowPalette& palette);
double badgeWidth(const QString& text);

/// Paints a spinner of twelve fading bars; `step` is the number of steps of 1/12 second taken so far.
void paintSpinner(QPainter& painter, const QRectF& place, const QColor& colour, int step);

/// Paints a ring that shrinks clockwise from twelve o'clock; `share` is the part that is left, from 0 to 1.
void paintCountdownRing(QPainter& painter, const QRectF& place, double share, const WindowPalette& palette);

/// Paints one key cap. `key` is "⌥", "⇧" and so on for a key with a symbol, or the text on the cap.
void paintKeyCap(QPainter& painter, const QRectF& cap, const QString& key, const WindowPalette& palette);
double keyCapWidth(const QString& key);
/// Paints an outline in place of a key cap.
void paintGhostCap(QPainter& painter, const QRectF& cap, const WindowPalette& palette);

}  // namespace vorli::ui
