#include "ui/WindowButton.h"

#include "ui/FocusRing.h"

#include <QPainter>

namespace vorli::ui {
namespace {

constexpr int side = 28;
constexpr double symbolSide = 14.0;
constexpr double symbolStroke = 1.75;  // on the symbols' grid of 24
constexpr double grid = 24.0;

}  // namespace

WindowButton::WindowButton(Appearance appearance, QWidget* parent)
    : QAbstractButton(parent), palette_(WindowPalette::of(appearance)) {
  setFixedSize(side, side);
  setFocusPolicy(Qt::TabFocus);
  setAttribute(Qt::WA_Hover);
  setAccessibleName(QStringLiteral("Close"));
}

void WindowButton::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  if (underMouse()) {
    QColor plate = palette_.redWash;
    if (isDown()) plate.setAlphaF(plate.alphaF() * 2.0F);
    painter.setBrush(plate);
    painter.drawEllipse(rect());
  }
  if (hasFocus() && showsFocus_)
    paintFocusRing(painter, QRectF(rect()).adjusted(3, 3, -3, -3), side / 2.0 - 3.0, palette_);
  painter.translate(QRectF(rect()).center() - QPointF(symbolSide, symbolSide) / 2.0);
  painter.scale(symbolSide / grid, symbolSide / grid);
  painter.setPen(
      QPen(underMouse() ? palette_.redInk : palette_.meta, symbolStroke, Qt::SolidLine, Qt::RoundCap));
  painter.drawLine(QPointF(6, 6), QPointF(18, 18));
  painter.drawLine(QPointF(18, 6), QPointF(6, 18));
}

void WindowButton::focusInEvent(QFocusEvent* event) {
  showsFocus_ = cameByKeyboard(*event);
  QAbstractButton::focusInEvent(event);
}

}  // namespace vorli::ui
