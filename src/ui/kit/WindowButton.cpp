#include "ui/kit/WindowButton.h"

#include "ui/kit/FocusRing.h"
#include "ui/kit/MixedColour.h"
#include "ui/kit/Symbol.h"

#include <QPainter>

namespace vorli::ui {
namespace {

constexpr double windowSymbolSide = 14.0;

}  // namespace

WindowButton::WindowButton(Kind kind, Appearance appearance, QWidget* parent)
    : Control(SpokenRole::button, appearance, parent), kind_(kind) {
  setFixedSize(side, side);
  say(kind == Kind::close ? QStringLiteral("Close") : QStringLiteral("Minimise"));
}

void WindowButton::paintEvent(QPaintEvent*) {
  const auto& palette = colours();
  const bool closes = kind_ == Kind::close;
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  if (hover() > 0.0) {
    QColor plate = closes ? palette.redWash : palette.wash;
    if (isDown()) plate.setAlphaF(plate.alphaF() * 2.0F);
    painter.setPen(Qt::NoPen);
    painter.setBrush(fadedTo(plate, hover()));
    painter.drawEllipse(rect());
  }
  constexpr int ringReach = 4;
  if (showsFocus()) {
    paintFocusRing(painter, QRectF(rect()).adjusted(ringReach, ringReach, -ringReach, -ringReach),
                   side / 2.0 - ringReach, palette);
  }
  QRectF place(0.0, 0.0, windowSymbolSide, windowSymbolSide);
  place.moveCenter(QRectF(rect()).center());
  const QColor ink = mixed(palette.meta, closes ? palette.redInk : palette.ink, hover());
  paintSymbol(painter, closes ? "xmark" : "minus", place, ink);
}

}  // namespace vorli::ui
