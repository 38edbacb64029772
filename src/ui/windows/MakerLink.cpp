#include "ui/windows/MakerLink.h"

#include "ui/kit/FocusRing.h"
#include "ui/kit/Paragraph.h"
#include "ui/kit/Symbol.h"

#include <QPainter>
#include <cmath>

namespace vorli::ui {
namespace {

constexpr double wordGap = 4.0, arrowGap = 3.0, arrowSide = 13.0;

TextRole nameRole() {
  TextRole role = TextRole::rowText();
  role.font.setWeight(QFont::Medium);
  return role;
}

}  // namespace

MakerLink::MakerLink(const QString& words, const QString& name, Appearance appearance, QWidget* parent)
    : Control(SpokenRole::link, appearance, parent), words_(words) {
  setText(name);
}

QSize MakerLink::sizeHint() const {
  const double width =
      textWidth(words_, TextRole::rowText()) + wordGap + textWidth(text(), nameRole()) + arrowGap + arrowSide;
  return {static_cast<int>(std::ceil(width)) + 2 * ringMargin,
          static_cast<int>(TextRole::rowText().leading) + 2 * ringMargin};
}

void MakerLink::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const auto& palette = colours();
  const QRectF line = QRectF(rect()).adjusted(ringMargin, ringMargin, -ringMargin, -ringMargin);
  paintLine(painter, words_, TextRole::rowText(), line, palette.meta);
  const double nameLeft = textWidth(words_, TextRole::rowText()) + wordGap;
  const double nameWidth = textWidth(text(), nameRole());
  const QRectF name(line.left() + nameLeft, line.top(), nameWidth, line.height());
  TextRole role = nameRole();
  role.font.setUnderline(isHovered());
  paintLine(painter, text(), role, name, palette.accent);
  const double lift = hover();
  paintSymbol(painter, "arrow.up.right",
              QRectF(name.right() + arrowGap + lift, line.center().y() - arrowSide / 2.0 - lift, arrowSide,
                     arrowSide),
              palette.accent);
  if (showsFocus())
    paintFocusRing(painter, QRectF(name.topLeft(), QSizeF(nameWidth + 16.0, name.height())), 4.0, palette);
}

}  // namespace vorli::ui
