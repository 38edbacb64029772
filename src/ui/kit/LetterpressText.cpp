#include "ui/kit/LetterpressText.h"

#include "ui/kit/Typeface.h"

#include <QPainter>

namespace vorli::ui {

LetterpressText::LetterpressText(const QString& text, double points, Appearance appearance, QWidget* parent)
    : QLabel(text, parent), palette_(WindowPalette::of(appearance)) {
  setFont(fraunces(points, QFont::Normal, -0.012));
  setAlignment(Qt::AlignCenter);
}

void LetterpressText::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setPen(palette_.letterpress);
  painter.drawText(QRectF(rect()).translated(0.0, palette_.letterpressOffset), alignment(), text());
  painter.setPen(palette_.ink);
  painter.drawText(rect(), alignment(), text());
}

}  // namespace vorli::ui
