#pragma once

#include "ui/WindowPalette.h"

#include <QFocusEvent>
#include <QPainter>

namespace vorli::ui {

/// Whether a control that gets the focus this way shows it: the mouse needs no ring.
inline bool cameByKeyboard(const QFocusEvent& event) {
  return event.reason() == Qt::TabFocusReason || event.reason() == Qt::BacktabFocusReason ||
         event.reason() == Qt::ShortcutFocusReason;
}

/// The ring of the focused control, round a shape of that radius.
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
