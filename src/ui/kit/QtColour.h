#pragma once

#include "base/Colour.h"

#include <QColor>
#include <algorithm>

namespace vorli::ui {

/// Converts to Qt's colour; components are clamped to 0..1.
inline QColor qtColour(const Colour& colour) {
  const auto component = [](double value) { return static_cast<float>(std::clamp(value, 0.0, 1.0)); };
  return QColor::fromRgbF(component(colour.red), component(colour.green), component(colour.blue),
                          component(colour.alpha));
}

}  // namespace vorli::ui
