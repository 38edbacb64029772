#pragma once

#include <QList>
#include <QPoint>
#include <QRect>
#include <optional>

namespace vorli::ui {

/// Where the status item was clicked last, in Qt's logical pixels.
struct ClickAnchor {
  QPoint point;
  /// About where the item's icon lies: a press in it belongs to the item, not to what lies behind.
  QRect icon;
};

/// One screen as Qt sees it: the origin is the same in native and logical pixels.
struct ScreenPlace {
  QRect geometry;   // logical
  QRect available;  // logical, without panels as far as the desktop tells
  double pixelRatio = 1.0;
};

/// Native to logical pixels, on the screen that holds the point; empty when none does.
std::optional<QPoint> logicalPoint(QPoint native, const QList<ScreenPlace>& screens);

/// The rectangle of an icon that was hit at `point`, whose panel does not tell it: a square as large as the
/// panel is thick, as far as the screen tells.
QRect assumedIconRectangle(QPoint point, const QList<ScreenPlace>& screens);

}  // namespace vorli::ui
