#pragma once

#include "ui/kit/WindowPalette.h"

#include <QFocusEvent>
#include <QPainter>

namespace vorli::ui {

/// True when the focus came by keyboard. A control that is focused with the mouse shows no ring.
inline bool cameByKeyboard(const QFocusEvent& event) {
  return event.reason() == Qt::TabFocusReason || event.reason() == Qt::BacktabFocusReason ||
         event.reason() == Qt::ShortcutFocusReason;
}

/// Paints the ring of the focused control around a shape with corners of `radius`.
inline void paintFocusRing(QPainter& painter, const QRectF& shape, double radius,
                           const WindowPalette& palette) {
  constexpr double gap = 2.0, width = 2.0;
  constexpr double out = gap + width / 2.0;
  painter.save();
  painter.setBrush(Qt::NoBrush);
  painter.setPen(QPen(palette.accent, width));
  painter.drawRoundedRect(shape.adjusted(-out, -out, out, out), radius + out, radius + out);
  painter.restore();
}

}  // namespace vorli::ui
