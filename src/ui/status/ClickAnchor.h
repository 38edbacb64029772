#pragma once

#include "ui/kit/ScreenPlaces.h"

#include <QList>
#include <QPoint>
#include <QRect>
#include <optional>

namespace vorli::ui {

/// Place of the last click on the status item, in Qt's logical pixels.
struct ClickAnchor {
  QPoint point;
  /// Approximate rectangle of the item's icon. A press in it is meant for the item.
  QRect icon;
};

/// Converts native to logical pixels on the screen that holds the point; empty when none does.
std::optional<QPoint> logicalPoint(QPoint native, const QList<ScreenPlace>& screens);

/// Assumed rectangle of an icon that was hit at `point`, for panels that do not report it: a square as large
/// as the panel is thick, as far as the screen's free area shows.
QRect assumedIconRectangle(QPoint point, const QList<ScreenPlace>& screens);

}  // namespace vorli::ui
