#include "ui/kit/CheckBox.h"

#include "ui/kit/FocusRing.h"
#include "ui/kit/MixedColour.h"
#include "ui/kit/Paragraph.h"
#include "ui/kit/Plates.h"
#include "ui/kit/Symbol.h"

#include <QPainter>
#include <cmath>

namespace vorli::ui {
namespace {

constexpr double checkBoxSide = 18.0, checkBoxRadius = 5.5, checkBoxGap = 10.0, checkMarkSide = 13.0;

}  // namespace

CheckBox::CheckBox(const QString& text, Appearance appearance, QWidget* parent)
    : Control(SpokenRole::toggle, appearance, parent) {
  setText(text);
  setCheckable(true);
  say(text);
}

QSize CheckBox::sizeHint() const {
  const double width = checkBoxSide + checkBoxGap + textWidth(text(), TextRole::search());
  return {static_cast<int>(std::ceil(width)) + 2 * ringMargin,
          static_cast<int>(checkBoxSide) + 2 * ringMargin};
}

int CheckBox::heightForWidth(int width) const {
  const double room = width - 2.0 * ringMargin - checkBoxSide - checkBoxGap;
  const double further = Paragraph(text(), TextRole::search(), room).heightOfFurtherLines();
  return static_cast<int>(std::ceil(checkBoxSide + further)) + 2 * ringMargin;
}

void CheckBox::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const auto& palette = colours();
  const QRectF box(ringMargin, (height() - checkBoxSide) / 2.0, checkBoxSide, checkBoxSide);
  if (isChecked()) {
    paintPlate(painter, box, checkBoxRadius, palette.primary.over(box), palette.primaryLine);
    QRectF check(0.0, 0.0, checkMarkSide, checkMarkSide);
    check.moveCenter(box.center());
    paintSymbol(painter, "checkmark", check, palette.primaryText);
  } else {
    paintPlate(painter, box, checkBoxRadius, palette.field, mixed(palette.offLine, palette.ink2, hover()));
  }
  if (showsFocus()) paintFocusRing(painter, box, checkBoxRadius, palette);
  const double left = box.right() + checkBoxGap;
  paintLines(painter, text(), TextRole::search(),
             QRectF(left, 0.0, width() - static_cast<double>(ringMargin) - left, height()), palette.ink2);
}

}  // namespace vorli::ui
