#pragma once

#include "ui/kit/Plates.h"

#include <QString>
#include <string_view>

namespace vorli::ui {

/// The common parts of all rows of a card: a tile with a symbol, a title, and a text that wraps beside the
/// control at the right end.
struct RowFace {
  std::string_view symbol;  // must outlive the row
  QString title;
  QString text;
  Tone tone = Tone::plain;
  double lit = 0.0;  // share to which the tile has faded from `tone` to the lit look

  static constexpr double leastHeight = 56.0;
  static constexpr double left = 12.0, right = 16.0;
  static constexpr double dividerLeft = 56.0;

  /// Height at a width, beside a control of `controlWidth`, which is 0 without a control.
  double heightFor(double width, double controlWidth) const;
  /// Returns the place of the tile in a row.
  static QRectF tileIn(const QRectF& row);
  /// `spinnerStep` of 0 or more shows a spinner in place of the symbol.
  void paint(QPainter& painter, const QRectF& row, double controlWidth, const WindowPalette& palette,
             int spinnerStep = -1) const;
};

}  // namespace vorli::ui
