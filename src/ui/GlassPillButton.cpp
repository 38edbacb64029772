#include "ui/GlassPillButton.h"

#include "ui/FocusRing.h"
#include "ui/Typeface.h"

#include <QFontMetricsF>
#include <QKeyEvent>
#include <QPainter>
#include <QPainterPath>
#include <cmath>

namespace vorli::ui {
namespace {

constexpr int capsuleHeight = 30;
constexpr int padding = 14;
constexpr int leastWidth = 72;
constexpr double lipWidth = 1.5;
constexpr float disabledOpacity = 0.42F;

QColor brighter(const QColor& colour, double factor) {
  const auto scaled = [factor](int value) {
    return std::min(255, static_cast<int>(std::lround(value * factor)));
  };
  return {scaled(colour.red()), scaled(colour.green()), scaled(colour.blue()), colour.alpha()};
}

}  // namespace

GlassPillButton::GlassPillButton(const QString& text, Role role, Appearance appearance, QWidget* parent)
    : QAbstractButton(parent), role_(role), palette_(WindowPalette::of(appearance)) {
  setText(text);
  setFont(geist(12.5, QFont::Medium));
  setFocusPolicy(Qt::StrongFocus);
  setAttribute(Qt::WA_Hover);
}

QSize GlassPillButton::sizeHint() const {
  const double textWidth = QFontMetricsF(font()).horizontalAdvance(text());
  const int width = std::max(leastWidth, static_cast<int>(std::ceil(textWidth)) + 2 * padding);
  return {width + 2 * ringMargin, capsuleHeight + 2 * ringMargin};
}

VerticalGradient GlassPillButton::fill() const {
  if (role_ == Role::plain) {
    if (isDown()) return {palette_.wash, palette_.wash};
    return underMouse() ? VerticalGradient{palette_.pill.top, palette_.pill.top} : palette_.pill;
  }
  const double factor = isDown() ? 0.92 : underMouse() ? 1.06 : 1.0;
  const VerticalGradient lit{brighter(palette_.primary.top, factor),
                             brighter(palette_.primary.bottom, factor)};
  return isDown() ? VerticalGradient{lit.bottom, lit.bottom} : lit;
}

void GlassPillButton::paintEvent(QPaintEvent*) {
  const bool primary = role_ == Role::primary;
  const QRectF capsule = QRectF(rect()).adjusted(ringMargin, ringMargin, -ringMargin, -ringMargin);
  const double radius = capsule.height() / 2.0;
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  if (!isEnabled()) painter.setOpacity(static_cast<double>(disabledOpacity));
  painter.setPen(Qt::NoPen);
  painter.setBrush(fill().over(capsule));
  painter.drawRoundedRect(capsule, radius, radius);
  if (!isDown()) {  // light on the upper edge: the capsule less itself, moved down
    QPainterPath whole, lowered;
    whole.addRoundedRect(capsule, radius, radius);
    lowered.addRoundedRect(capsule.translated(0.0, lipWidth), radius, radius);
    painter.fillPath(whole.subtracted(lowered), primary ? palette_.primaryLip : palette_.lip);
  }
  painter.setBrush(Qt::NoBrush);
  painter.setPen(QPen(primary                     ? palette_.primaryLine
                      : underMouse() && !isDown() ? palette_.offLine
                                                  : palette_.pillLine,
                      1.0));
  painter.drawRoundedRect(capsule.adjusted(0.5, 0.5, -0.5, -0.5), radius - 0.5, radius - 0.5);
  if (hasFocus() && showsFocus_) paintFocusRing(painter, capsule, radius, palette_);
  painter.setPen(primary ? palette_.primaryText : palette_.ink);
  painter.drawText(capsule, Qt::AlignCenter, text());
}

void GlassPillButton::focusInEvent(QFocusEvent* event) {
  showsFocus_ = cameByKeyboard(*event);
  QAbstractButton::focusInEvent(event);
}

void GlassPillButton::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) return click();
  QAbstractButton::keyPressEvent(event);
}

}  // namespace vorli::ui
