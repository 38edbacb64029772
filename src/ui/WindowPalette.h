#pragma once

#include <QBrush>
#include <QColor>
#include <QRectF>

namespace vorli::ui {

enum class Appearance { light, dark };

/// Two colours, the first one above.
struct VerticalGradient {
  QColor top;
  QColor bottom;

  QBrush over(const QRectF& area) const;
};

/// The colours of the windows and menus that the program draws, by what they are for.
struct WindowPalette {
  QColor surface, ink, ink2, meta, accent, accentInk;
  VerticalGradient card;
  QColor border, divider, lip;
  QColor wash, wash2, calmWash, calmLine;
  VerticalGradient primary;
  QColor primaryText, primaryLine, primaryLip;
  VerticalGradient pill;
  QColor pillLine, offLine;
  VerticalGradient knob;
  QColor amber, warn, amberInk, amberWash, amberLine;
  QColor red, redInk, redWash, redLine;
  QColor green, idle;
  QColor field, fieldLine;
  VerticalGradient toast;
  QColor toastLine, windowLine, gleam, scroll;
  QColor tealBloom, amberBloom;    // of the window's ground
  QColor letterpress;              // the pressed text's second edge
  double letterpressOffset = 1.0;  // downwards
  VerticalGradient mark;           // of AppMark, as are the rest
  QColor markLine, markFirstTick, markLastTick;

  static const WindowPalette& of(Appearance appearance);
};

}  // namespace vorli::ui
