#include "ui/kit/GlassPillButton.h"

#include "ui/kit/FocusRing.h"
#include "ui/kit/MixedColour.h"
#include "ui/kit/Paragraph.h"
#include "ui/kit/Plates.h"
#include "ui/kit/Symbol.h"

#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <cmath>
#include <utility>

namespace vorli::ui {
namespace {

constexpr int pillLeastWidth = 72;
constexpr double pillGap = 6.0;
constexpr double pillLeastPadding = 8.0;  // of a text that is too long for the width of its button
constexpr double countdownStepSeconds = 0.1;
constexpr InnerShadow pressedShadow{{1.0, 2.0, 3.0}, 8};

QColor brighter(const QColor& colour, double factor) {
  const auto scaled = [factor](int value) {
    return std::min(255, static_cast<int>(std::lround(value * factor)));
  };
  return {scaled(colour.red()), scaled(colour.green()), scaled(colour.blue()), colour.alpha()};
}

int heightOf(GlassPillButton::Size size) {
  switch (size) {
    case GlassPillButton::Size::toast:
      return 34;
    case GlassPillButton::Size::large:
      return 44;
    case GlassPillButton::Size::regular:
      break;
  }
  return 30;
}

TextRole textRole(GlassPillButton::Size size) {
  return size == GlassPillButton::Size::large ? TextRole::largeButton() : TextRole::button();
}

}  // namespace

GlassPillButton::GlassPillButton(const QString& text, Role role, Appearance appearance, QWidget* parent,
                                 Size size)
    : Control(SpokenRole::button, appearance, parent), role_(role), size_(size) {
  setText(text);
  setFont(textRole(size).font);
}

void GlassPillButton::setSymbol(std::string_view name) {
  symbol_ = name;
  updateGeometry();
  update();
}

void GlassPillButton::setSpinner(std::optional<int> step) {
  spinner_ = step;
  update();
}

void GlassPillButton::setCountdown(std::optional<double> share) {
  if (share && countdown_ && *share < *countdown_)
    countdownRing_.moveTo(*share, Animation::linear(countdownStepSeconds));
  else
    countdownRing_.jumpTo(share.value_or(1.0));
  countdown_ = share;
  update();
}

void GlassPillButton::setPresence(double share) {
  if (std::exchange(presence_, share) != share) update();
}

double GlassPillButton::leadingSide() const {
  if (countdown_) return 16.0;
  if (symbol_.empty() && !spinner_) return 0.0;
  return size_ == Size::large ? 17.0 : 15.0;
}

QSize GlassPillButton::sizeHint() const {
  const int padding = role_ == Role::quiet ? 12 : size_ == Size::large ? 22 : 14;
  const double leading = leadingSide() > 0.0 ? leadingSide() + pillGap : 0.0;
  const int content = static_cast<int>(std::ceil(textWidth(text(), textRole(size_)) + leading));
  const bool mayBeNarrow = role_ == Role::quiet || role_ == Role::destructive;
  const int width = std::max(mayBeNarrow ? 0 : pillLeastWidth, content + 2 * padding);
  return {width + 2 * ringMargin, heightOf(size_) + 2 * ringMargin};
}

QColor GlassPillButton::ink() const {
  switch (role_) {
    case Role::primary:
      return colours().primaryText;
    case Role::destructive:
      return colours().redInk;
    case Role::quiet:
      return isDown() ? colours().ink : mixed(colours().ink2, colours().ink, hover());
    case Role::plain:
      break;
  }
  return spinner_ ? colours().ink2 : colours().ink;
}

void GlassPillButton::paintCapsule(QPainter& painter, const QRectF& capsule) const {
  const auto& palette = colours();
  const double radius = capsule.height() / 2.0;
  if (role_ == Role::quiet) {
    const QColor fill = fadedTo(palette.wash, isDown() ? 1.0 : hover());
    return paintPlate(painter, capsule, radius, fill, Qt::transparent);
  }
  if (role_ == Role::destructive) {
    const QColor fill =
        isDown() ? palette.redLine.darker(108) : mixed(palette.redWash, palette.redLine, hover());
    return paintPlate(painter, capsule, radius, fill, palette.redLine);
  }
  const bool primary = role_ == Role::primary;
  if (isDown()) {
    const QBrush fill = primary ? brighter(palette.primary.bottom, 0.92) : palette.wash;
    paintPlate(painter, capsule, radius, fill, primary ? palette.primaryLine : palette.pillLine);
    if (!primary) paintInnerShadow(painter, capsule, radius, pressedShadow);
    return;
  }
  paintSmallShadow(painter, capsule, radius, palette.pillShadow);
  if (primary) {
    const double factor = 1.0 + 0.06 * hover();
    const VerticalGradient lit{brighter(palette.primary.top, factor),
                               brighter(palette.primary.bottom, factor)};
    return paintPlate(painter, capsule, radius, lit.over(capsule), palette.primaryLine, palette.primaryLip);
  }
  const VerticalGradient fill{palette.pill.top, mixed(palette.pill.bottom, palette.pill.top, hover())};
  paintPlate(painter, capsule, radius, fill.over(capsule), mixed(palette.pillLine, palette.offLine, hover()),
             palette.lip);
}

void GlassPillButton::paintContent(QPainter& painter, const QRectF& capsule) const {
  const TextRole role = textRole(size_);
  const double side = leadingSide();
  const double leading = side > 0.0 ? side + pillGap : 0.0;
  const double room = capsule.width() - leading - 2.0 * pillLeastPadding;
  const Paragraph words(text(), role, room, Paragraph::Wrap::balanced);
  const double wordsWidth = words.naturalWidth();
  const double whole = wordsWidth + leading;
  const double left = capsule.center().x() - whole / 2.0;
  const QRectF place(left, capsule.center().y() - side / 2.0, side, side);
  if (countdown_)
    paintCountdownRing(painter, place, countdownRing_.shown(), colours());
  else if (spinner_)
    paintSpinner(painter, place, ink(), *spinner_);
  else if (side > 0.0)
    paintSymbol(painter, symbol_, place, ink());
  words.paint(painter,
              {left + leading, capsule.center().y() - words.height() / 2.0, wordsWidth, words.height()},
              ink(), Qt::AlignHCenter);
}

void GlassPillButton::paintEvent(QPaintEvent*) {
  const QRectF capsule = QRectF(rect()).adjusted(ringMargin, ringMargin, -ringMargin, -ringMargin);
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setOpacity(isEnabled() || spinner_ ? presence_ : presence_ * disabledOpacity);
  paintCapsule(painter, capsule);
  if (showsFocus()) paintFocusRing(painter, capsule, capsule.height() / 2.0, colours());
  paintContent(painter, capsule);
}

}  // namespace vorli::ui
