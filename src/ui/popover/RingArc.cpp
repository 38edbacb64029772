#include "ui/popover/RingArc.h"

#include "ui/popover/BlurredProfile.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace vorli::ui {
namespace {

constexpr float turn = 2.0F * std::numbers::pi_v<float>;

float covered(float inside) {
  return std::clamp(inside + 0.5F, 0.0F, 1.0F);
}

QRgb toPixel(const Premultiplied& value) {
  const auto byte = [](float component) {
    const float upwards = std::clamp(component, 0.0F, 1.0F) * 255.0F + 0.5F;
    return static_cast<QRgb>(upwards);
  };
  return byte(value.alpha) << 24 | byte(value.red) << 16 | byte(value.green) << 8 | byte(value.blue);
}

Premultiplied ofPixel(QRgb pixel) {
  constexpr float unit = 1.0F / 255.0F;
  return Premultiplied{static_cast<float>(qRed(pixel)), static_cast<float>(qGreen(pixel)),
                       static_cast<float>(qBlue(pixel)), static_cast<float>(qAlpha(pixel))} *
         unit;
}

/// The arc with all that does not change from pixel to pixel.
class Band {
 public:
  explicit Band(const RingArc& arc)
      : radius_(static_cast<float>(arc.radius)),
        half_(static_cast<float>(arc.width / 2.0)),
        progress_(static_cast<float>(std::clamp(arc.progress, 0.0, 1.0))),
        hasArc_(arc.progress > RingArc::leastProgress),
        endX_(radius_ * std::sin(progress_ * turn)),
        endY_(-radius_ * std::cos(progress_ * turn)),
        track_(Premultiplied::of(arc.track, arc.track.alpha)),
        head_(Premultiplied::of(arc.head, 1.0)),
        tail_(Premultiplied::of(arc.tail, 1.0)) {
    const float cap = std::asin(half_ / radius_) / turn;
    seam_ = std::max((progress_ + 1.0F) / 2.0F, std::min(progress_ + cap, 0.999F));
  }

  float outer() const { return radius_ + half_ + 1.0F; }
  float inner() const { return radius_ - half_ - 1.0F; }

  Premultiplied at(float dx, float dy) const {
    const float distance = std::sqrt(dx * dx + dy * dy);
    const float band = covered(half_ - std::abs(distance - radius_));
    const Premultiplied track = track_ * band;
    if (!hasArc_ || band == 0.0F) return track;
    float share = std::atan2(dx, -dy) / turn;  // clockwise from the top
    if (share < 0.0F) share += 1.0F;
    const float arc = share <= progress_ ? band : endsCover(dx, dy);
    return (colourAt(share) * arc).over(track);
  }

 private:
  float endsCover(float dx, float dy) const {
    const float fromStart = std::hypot(dx, dy + radius_), fromEnd = std::hypot(dx - endX_, dy - endY_);
    return covered(half_ - std::min(fromStart, fromEnd));
  }

  Premultiplied colourAt(float share) const {
    if (share > progress_) return share < seam_ ? head_ : tail_;
    const float along = share / progress_;
    return head_ * along + tail_ * (1.0F - along);
  }

  float radius_, half_, progress_;
  bool hasArc_;
  float endX_, endY_;
  Premultiplied track_, head_, tail_;
  float seam_;
};

void paintPixels(QRgb* row, int first, int end, float centreX, float dy, const Band& band) {
  for (int x = first; x < end; ++x) {
    const Premultiplied value = band.at(static_cast<float>(x) + 0.5F - centreX, dy);
    if (value.alpha > 0.0F) row[x] = toPixel(value.over(ofPixel(row[x])));
  }
}

}  // namespace

void RingArc::paint(QImage& image) const {
  const Band band(*this);
  const auto centreX = static_cast<float>(centre.x()), centreY = static_cast<float>(centre.y());
  const int top = std::max(0, static_cast<int>(std::floor(centreY - band.outer())));
  const int bottom = std::min(image.height() - 1, static_cast<int>(std::ceil(centreY + band.outer())));
  const auto column = [&](float x) { return std::clamp(static_cast<int>(x), 0, image.width()); };
  for (int y = top; y <= bottom; ++y) {
    const float dy = static_cast<float>(y) + 0.5F - centreY;
    if (std::abs(dy) >= band.outer()) continue;
    const float far = std::sqrt(band.outer() * band.outer() - dy * dy);
    const float near = std::abs(dy) < band.inner() ? std::sqrt(band.inner() * band.inner() - dy * dy) : 0.0F;
    auto* row = reinterpret_cast<QRgb*>(image.scanLine(y));
    const int middle = column(centreX);
    paintPixels(row, column(centreX - far - 1.0F), std::min(middle, column(centreX - near + 1.0F)), centreX,
                dy, band);
    paintPixels(row, std::max(middle, column(centreX + near - 1.0F)), column(centreX + far + 2.0F), centreX,
                dy, band);
  }
}

}  // namespace vorli::ui
