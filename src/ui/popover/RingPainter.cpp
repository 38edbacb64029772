#include "ui/popover/RingPainter.h"

#include "ambient/Palette.h"
#include "base/Animated.h"
#include "popover/PopoverView.h"
#include "ui/kit/QtColour.h"
#include "ui/kit/QtText.h"
#include "ui/popover/PopoverLayout.h"
#include "ui/popover/TextStyle.h"

#include <QLinearGradient>
#include <QPainter>
#include <algorithm>
#include <cmath>
#include <cstring>
#include <numbers>

namespace vorli::ui {
namespace {

constexpr double lensShrink = 0.025;    // share by which the pressed lens and its word shrink
constexpr double labelBaseline = 4.75;  // below the centre: half the height of a capital letter
constexpr double beadRadius = 1.5, beadFrom = 0.03;
constexpr double tailPaleness = 0.42;
constexpr double focusRadius = 45.5;

// Mixes colour and opacity separately, which keeps the brown of a white-to-brown rim.
QBrush vertical(double halfHeight, const Colour& top, const Colour& bottom) {
  constexpr int parts = 8;
  QLinearGradient gradient(0.0, -halfHeight, 0.0, halfHeight);
  for (int i = 0; i <= parts; ++i) {
    const double share = static_cast<double>(i) / parts;
    gradient.setColorAt(share, qtColour(mix(top, bottom, share)));
  }
  return gradient;
}

QPointF onCircle(double radius, double turns) {
  const double angle = 2.0 * std::numbers::pi * turns;
  return {radius * std::sin(angle), -radius * std::cos(angle)};
}

/// Draws around the origin, in points.
class RingDrawing {
 public:
  RingDrawing(QPainter& painter, const RingPicture& ring, Appearance appearance)
      : painter_(painter),
        ring_(ring),
        palette_(PopoverPalette::of(appearance)),
        ink_(themeOf(appearance).ringInk(ring.stateColour)),
        press_(ring.canPolish ? ring.button.press : 0.0) {}

  double lensScale() const { return ring_.button.scales ? 1.0 - lensShrink * press_ : 1.0; }

  void lens() const {
    constexpr Colour white = palette::white;
    const auto& glass = palette_.lens;
    const double on = ring_.lens;
    const double hovered = ring_.canPolish ? mix(glass.rest, glass.hover, ring_.button.hover) : glass.rest;
    const double opacity = mix(hovered, glass.pressed, press_) * on;
    painter_.setPen(Qt::NoPen);
    painter_.setBrush(vertical(PopoverMetrics::lensRadius, white.withAlpha(opacity + glass.topExtra * on),
                               white.withAlpha(opacity * glass.bottomShare)));
    painter_.drawEllipse(QPointF(), PopoverMetrics::lensRadius, PopoverMetrics::lensRadius);

    const double rim = PopoverMetrics::lensRadius - 0.5;
    painter_.setBrush(Qt::NoBrush);
    painter_.setPen(QPen(vertical(PopoverMetrics::lensRadius, glass.rimTop.withAlpha(glass.rimTop.alpha * on),
                                  glass.rimBottom.withAlpha(glass.rimBottom.alpha * on)),
                         1.0));
    painter_.drawEllipse(QPointF(), rim, rim);
  }

  void bead() const {
    if (ring_.progress <= beadFrom) return;
    painter_.setPen(Qt::NoPen);
    painter_.setBrush(qtColour(palette_.bead));
    painter_.drawEllipse(onCircle(PopoverMetrics::ringRadius, ring_.progress), beadRadius, beadRadius);
  }

  void focus() const {
    if (!ring_.button.focused) return;
    painter_.setBrush(Qt::NoBrush);
    painter_.setPen(QPen(qtColour(palette_.focus), PopoverMetrics::focusWidth));
    painter_.drawEllipse(QPointF(), focusRadius, focusRadius);
  }

  void label() const {
    constexpr double invisible = 0.01;
    if (ring_.labelOpacity <= invisible) return;
    const auto& styles = PopoverTextStyles::shared();
    const TextStyle& style = ring_.labelReady ? styles.label : styles.labelResting;
    const QString text = qtText(PopoverView::polishTitle);
    const Colour colour = ring_.labelReady ? palette_.label : palette_.labelResting;
    style.draw(painter_, text, {-style.width(text) / 2.0, labelBaseline},
               colour.withAlpha(ring_.labelOpacity));
  }

  void dots() const {
    painter_.setPen(Qt::NoPen);
    for (const auto& dot : ring_.dots) {
      if (dot.opacity <= 0.0) continue;
      painter_.setBrush(qtColour(ink_.withAlpha(dot.opacity)));
      const double radius = DottedReassuranceRing::dotSize / 2.0 * dot.scale * ring_.dotsScale;
      painter_.drawEllipse(QPointF(dot.x, dot.y) * ring_.dotsScale, radius, radius);
    }
  }

 private:
  QPainter& painter_;
  const RingPicture& ring_;
  const PopoverPalette& palette_;
  const Colour ink_;
  const double press_;
};

void preparePainter(QPainter& painter, double scale) {
  painter.setRenderHint(QPainter::Antialiasing);
  painter.translate(painter.device()->width() / 2.0, painter.device()->height() / 2.0);
  painter.scale(scale, scale);
}

// Reduces the picture to what the base shows, without the band. The state's colour remains only for the dots.
RingPicture baseOf(RingPicture ring) {
  ring.progress = 0.0;
  const bool showsDots =
      std::any_of(ring.dots.begin(), ring.dots.end(), [](const auto& dot) { return dot.opacity > 0.0; });
  if (!showsDots) ring.stateColour = {};
  return ring;
}

QImage clearSquare(int side) {
  QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  return image;
}

}  // namespace

const QImage& RingPainter::draw(const RingPicture& ring, Appearance appearance, double pixelRatio) {
  const bool isOfOtherKind = pixelRatio_ != pixelRatio || appearance_ != appearance;
  if (!isOfOtherKind && drawn_ == ring) return image_;
  if (isOfOtherKind) {
    const int side = 2 * static_cast<int>(std::ceil(reach * pixelRatio));
    image_ = clearSquare(side);
    base_ = clearSquare(side);
    drawnBase_.reset();
    appearance_ = appearance;
    pixelRatio_ = pixelRatio;
  }
  drawn_ = ring;
  const double scale = pixelRatio * ring.scale;
  if (const auto base = baseOf(ring); drawnBase_ != base) {
    drawBase(base, scale);
    drawnBase_ = base;
  }
  std::memcpy(image_.bits(), base_.constBits(), static_cast<std::size_t>(base_.sizeInBytes()));
  const auto& palette = PopoverPalette::of(appearance);
  const Colour ink = themeOf(appearance).ringInk(ring.stateColour);
  band_.paint(image_, {.radius = PopoverMetrics::ringRadius * scale,
                       .width = PopoverMetrics::ringWidth * scale,
                       .progress = ring.progress,
                       .track = palette.track,
                       .head = ink,
                       .tail = blend(ink, palette.arcTailGround, tailPaleness)});
  QPainter painter(&image_);
  preparePainter(painter, scale);
  RingDrawing(painter, ring, appearance).bead();
  return image_;
}

void RingPainter::drawBase(const RingPicture& ring, double scale) {
  base_.fill(Qt::transparent);
  QPainter painter(&base_);
  preparePainter(painter, scale);
  const RingDrawing drawing(painter, ring, appearance_);
  drawing.focus();
  painter.scale(drawing.lensScale(), drawing.lensScale());
  drawing.lens();
  drawing.label();
  drawing.dots();
}

void RingPainter::forget() {
  *this = {};
}

}  // namespace vorli::ui
