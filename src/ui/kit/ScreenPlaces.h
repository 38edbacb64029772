#pragma once

#include <QList>
#include <QRect>

namespace vorli::ui {

/// One screen as Qt sees it: the origin is the same in native and logical pixels.
struct ScreenPlace {
  QRect geometry;   // logical
  QRect available;  // logical, without the panels that the desktop reports
  double pixelRatio = 1.0;
};

/// The screens as Qt sees them now.
QList<ScreenPlace> screenPlaces();

}  // namespace vorli::ui
