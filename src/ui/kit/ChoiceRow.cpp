#include "ui/kit/ChoiceRow.h"

#include <QPainter>
#include <cmath>

namespace vorli::ui {

ChoiceRow::ChoiceRow(const RowFace& face, const QStringList& words, Appearance appearance, QWidget* parent)
    : QWidget(parent),
      palette_(WindowPalette::of(appearance)),
      face_(face),
      choice_(new PillChoice(words, face.title, appearance, this)) {
  setAccessibleName(face.title);
  setAccessibleDescription(face.text);
}

int ChoiceRow::heightForWidth(int width) const {
  return static_cast<int>(std::ceil(face_.heightFor(width, choice_->sizeHint().width())));
}

void ChoiceRow::resizeEvent(QResizeEvent*) {
  const QSize size = choice_->sizeHint();
  const int left = width() - static_cast<int>(RowFace::right) - size.width();
  choice_->setGeometry(QRect(QPoint(left, (height() - size.height()) / 2), size));
}

void ChoiceRow::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  face_.paint(painter, rect(), choice_->sizeHint().width(), palette_);
}

}  // namespace vorli::ui
