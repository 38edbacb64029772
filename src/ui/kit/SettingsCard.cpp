#include "ui/kit/SettingsCard.h"

#include "ui/kit/Paragraph.h"
#include "ui/kit/Plates.h"
#include "ui/kit/RowFace.h"

#include <QPainter>
#include <QPainterPath>
#include <cmath>

namespace vorli::ui {
namespace {

constexpr double cardTitleLeft = 4.0;
constexpr double cardTitleHeight = 20.0, cardTitleGap = 8.0;

Paragraph cardTitle(const QString& text, int width) {
  return {text, TextRole::groupTitle(), width - cardTitleLeft};
}

}  // namespace

SettingsCard::SettingsCard(const QString& title, Appearance appearance, QWidget* parent)
    : QWidget(parent), title_(title), palette_(WindowPalette::of(appearance)) {
  setAccessibleName(title);
}

void SettingsCard::addRow(QWidget* row) {
  row->setParent(this);
  row->show();
  rows_.push_back(row);
}

int SettingsCard::top(int width) const {
  if (title_.isEmpty()) return 0;
  const double further = cardTitle(title_, width).heightOfFurtherLines();
  return static_cast<int>(std::ceil(cardTitleHeight + further + cardTitleGap));
}

int SettingsCard::heightForWidth(int width) const {
  int height = top(width);
  for (const auto* row : rows_) {
    if (!row->isHidden()) height += row->heightForWidth(width);
  }
  return height;
}

void SettingsCard::arrange() {
  int y = top(width());
  for (auto* row : rows_) {
    if (row->isHidden()) continue;
    row->setGeometry(0, y, width(), row->heightForWidth(width()));
    y += row->height();
  }
  update();
}

void SettingsCard::resizeEvent(QResizeEvent*) {
  arrange();
}

void SettingsCard::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  if (!title_.isEmpty()) {
    const QRectF place(cardTitleLeft, 0.0, width() - cardTitleLeft, top(width()) - cardTitleGap);
    cardTitle(title_, width()).paintCentred(painter, place, palette_.ink2);
  }
  paintCard(painter, QRectF(rect()).adjusted(0.0, top(width()), 0.0, 0.0), palette_);
  bool first = true;
  for (const auto* row : rows_) {
    if (row->isHidden()) continue;
    if (!first) {
      painter.fillRect(QRectF(RowFace::dividerLeft, row->y(), width() - RowFace::dividerLeft, 1.0),
                       palette_.divider);
    }
    first = false;
  }
}

void SettingsCard::paintHover(QPainter& painter, const QWidget& row, const QColor& colour) {
  if (colour.alpha() == 0) return;
  QPainterPath shape;
  shape.addRect(row.rect());
  if (const auto* card = dynamic_cast<const SettingsCard*>(row.parentWidget())) {
    QPainterPath plate;
    plate.addRoundedRect(QRectF(card->rect()).adjusted(0.0, card->top(card->width()), 0.0, 0.0), cardRadius,
                         cardRadius);
    shape = shape.intersected(plate.translated(-QPointF(row.pos())));
  }
  painter.fillPath(shape, colour);
}

}  // namespace vorli::ui
