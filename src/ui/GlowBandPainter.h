#pragma once

#include <QColor>
#include <QRect>

class QPainter;

namespace vorli::ui {

/// One of the four lights along the edges of a screen.
enum class ScreenEdge { top, bottom, left, right };

/// Where the band at `edge` of `screen` lies, this deep and as long as the edge.
QRect glowBandGeometry(ScreenEdge edge, const QRect& screen, int depth);

/// Fills `band` from `colour` at the edge to clear towards the middle, replacing what is there.
void paintGlowBand(QPainter& painter, ScreenEdge edge, const QRect& band, const QColor& colour);

}  // namespace vorli::ui
