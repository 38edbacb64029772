#pragma once

#include <QImage>

namespace vorli::ui {

/// Opacity of a pixel, from 0 to 1.
inline double alphaAt(const QImage& image, int x, int y) {
  return static_cast<double>(image.pixelColor(x, y).alphaF());
}

}  // namespace vorli::ui
