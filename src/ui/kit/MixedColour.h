#pragma once

#include <QColor>

namespace vorli::ui {

/// The colour at `share` of its opacity.
inline QColor fadedTo(const QColor& colour, double share) {
  QColor result = colour;
  result.setAlphaF(colour.alphaF() * static_cast<float>(share));
  return result;
}

/// The colour at `share` of the way from one to the other.
inline QColor mixed(const QColor& from, const QColor& to, double share) {
  if (share <= 0.0) return from;
  if (share >= 1.0) return to;
  const auto part = [share](float a, float b) { return a + (b - a) * static_cast<float>(share); };
  return QColor::fromRgbF(part(from.redF(), to.redF()), part(from.greenF(), to.greenF()),
                          part(from.blueF(), to.blueF()), part(from.alphaF(), to.alphaF()));
}

}  // namespace vorli::ui
