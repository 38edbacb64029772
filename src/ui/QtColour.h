#pragma once

#include "base/Colour.h"

#include <QColor>
#include <algorithm>

namespace vorli::ui {

/// Components outside of 0..1 are cut to it.
inline QColor qtColour(const Colour& colour) {
  const auto component = [](double value) { return static_cast<float>(std::clamp(value, 0.0, 1.0)); };
  return QColor::fromRgbF(component(colour.red), component(colour.green), component(colour.blue),
                          component(colour.alpha));
}

}  // namespace vorli::ui
