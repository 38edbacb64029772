#include "ui/kit/GlassToggle.h"

#include "ui/kit/FocusRing.h"
#include "ui/kit/MixedColour.h"
#include "ui/kit/Plates.h"
#include "ui/kit/SettingsCard.h"

#include <QPainter>
#include <QPainterPath>
#include <cmath>

namespace vorli::ui {
namespace {

constexpr InnerShadow litShadow{{1.0, 2.0, 3.5}, 14};
constexpr double knobResponse = 0.30, knobDamping = 0.82, litSeconds = 0.16;

}  // namespace

GlassToggle::GlassToggle(const RowFace& face, Appearance appearance, QWidget* parent)
    : Control(SpokenRole::toggle, appearance, parent), face_(face) {
  setCheckable(true);
  say(face_.title, face_.text);
  connect(this, &QAbstractButton::toggled, this, [this](bool on) {
    knob_.moveTo(on ? 1.0 : 0.0, Animation::spring(knobResponse, knobDamping));
    lit_.fadeTo(on ? 1.0 : 0.0, litSeconds);
  });
}

void GlassToggle::setText(const QString& text) {
  face_.text = text;
  say(face_.title, text);
  update();
}

int GlassToggle::heightForWidth(int width) const {
  return static_cast<int>(std::ceil(face_.heightFor(width, switchSize.width())));
}

void GlassToggle::paintSwitch(QPainter& painter, const QRectF& track) const {
  constexpr double inset = 3.0, knobSide = 18.0, pressedStretch = 4.0;
  const auto& palette = colours();
  const double radius = track.height() / 2.0;
  const double lit = lit_.shown(), opacity = painter.opacity();
  if (lit < 1.0) {
    painter.setOpacity(opacity * (1.0 - lit));
    paintPlate(painter, track, radius, palette.wash, mixed(palette.offLine, palette.ink2, hover()));
  }
  if (lit > 0.0) {
    const VerticalGradient deep{palette.primary.bottom, palette.primary.top};
    painter.setOpacity(opacity * lit);
    paintPlate(painter, track, radius, deep.over(track), palette.primaryLine);
    paintInnerShadow(painter, track, radius, litShadow);
  }
  painter.setOpacity(opacity);
  const double width = knobSide + (isDown() ? pressedStretch : 0.0);
  const double way = track.width() - 2.0 * inset - width;
  const double left = track.left() + inset + knob_.shown() * way;
  const QRectF knob(left, track.top() + inset, width, knobSide);
  const double knobRadius = knobSide / 2.0;
  paintSmallShadow(painter, knob, knobRadius, palette.knobShadow);
  painter.setBrush(palette.knob.over(knob));
  painter.setPen(Qt::NoPen);
  painter.drawRoundedRect(knob, knobRadius, knobRadius);
  painter.setBrush(Qt::NoBrush);
  painter.setPen(QPen(palette.knobLine, 0.75));
  painter.drawRoundedRect(knob.adjusted(-0.375, -0.375, 0.375, 0.375), knobRadius, knobRadius);
}

void GlassToggle::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  SettingsCard::paintHover(painter, *this, fadedTo(colours().wash2, hover()));
  if (!isEnabled()) painter.setOpacity(disabledOpacity);
  RowFace face = face_;
  face.lit = lit_.shown();
  const QRectF row = rect();
  face.paint(painter, row, switchSize.width(), colours());
  const QRectF track(QPointF(row.right() - RowFace::right - switchSize.width(),
                             row.center().y() - switchSize.height() / 2.0),
                     switchSize);
  paintSwitch(painter, track);
  if (showsFocus()) paintFocusRing(painter, track, switchSize.height() / 2.0, colours());
}

}  // namespace vorli::ui
