#pragma once

#include "base/Colour.h"

#include <QFont>
#include <QPointF>
#include <QString>

class QPainter;

namespace vorli::ui {

/// A font at a size; `tracking` is added after every glyph but the last.
struct TextStyle {
  QFont font;
  double tracking = 0.0;

  /// Width of the drawn text, in points.
  double width(const QString& text) const;
  /// `origin` is the left end of the baseline.
  void draw(QPainter& painter, const QString& text, const QPointF& origin, const Colour& colour) const;
};

/// The styles of the popover's texts, by use.
struct PopoverTextStyles {
  TextStyle headline, aside, label, labelResting, culprit, name, question, button, banner, link;

  /// Created on first use; needs the application object.
  static const PopoverTextStyles& shared();
};

/// Returns the text, or as many whole letters of its beginning as fit `width` together with an ellipsis.
QString cutToWidth(const TextStyle& style, const QString& text, double width);

}  // namespace vorli::ui
