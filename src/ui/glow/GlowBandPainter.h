#pragma once

#include <QColor>
#include <QRect>

class QPainter;

namespace vorli::ui {

/// One of the four lights along the edges of a screen.
enum class ScreenEdge { top, bottom, left, right };

/// Rectangle of the band at `edge` of `screen`, as long as the edge and at most `depth` deep.
QRect glowBandGeometry(ScreenEdge edge, const QRect& screen, int depth);

/// Fills `band` with a gradient from `colour` at the edge to transparent towards the middle, replacing what
/// is there.
void paintGlowBand(QPainter& painter, ScreenEdge edge, const QRect& band, const QColor& colour);

}  // namespace vorli::ui
