#include "ui/kit/LinkRow.h"

#include "ui/kit/FocusRing.h"
#include "ui/kit/MixedColour.h"
#include "ui/kit/SettingsCard.h"
#include "ui/kit/Symbol.h"

#include <QPainter>
#include <cmath>

namespace vorli::ui {

LinkRow::LinkRow(Kind kind, const RowFace& face, Appearance appearance, QWidget* parent)
    : Control(kind == Kind::externalLink ? SpokenRole::link : SpokenRole::button, appearance, parent),
      kind_(kind),
      face_(face) {
  say(face_.title, face_.text);
}

int LinkRow::heightForWidth(int width) const {
  return static_cast<int>(std::ceil(face_.heightFor(width, arrowSide())));
}

void LinkRow::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const auto& palette = colours();
  SettingsCard::paintHover(painter, *this, isDown() ? palette.wash : fadedTo(palette.wash2, hover()));
  const QRectF row = rect();
  face_.paint(painter, row, arrowSide(), palette);
  QRectF arrow(row.right() - RowFace::right - arrowSide(), row.center().y() - arrowSide() / 2.0, arrowSide(),
               arrowSide());
  if (showsFocus()) paintFocusRing(painter, arrow.adjusted(-2.0, -2.0, 2.0, 2.0), 6.0, palette);
  const bool isLink = kind_ == Kind::externalLink;
  if (isLink) arrow.translate(hover(), -hover());
  paintSymbol(painter, isLink ? "arrow.up.right" : "chevron.right", arrow,
              isLink ? mixed(palette.meta, palette.accent, hover()) : palette.meta);
}

}  // namespace vorli::ui
