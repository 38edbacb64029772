#include "ui/popover/RingArc.h"

#include "ui/light/RadialProfile.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace vorli::ui {
namespace {

constexpr float wholeTurn = 2.0F * std::numbers::pi_v<float>;
constexpr float turnUnits = 65536.0F, fullCoverage = 255.0F;

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

/// The arc with everything that is the same for all pixels.
class Band {
 public:
  explicit Band(const RingArc& arc)
      : radius_(static_cast<float>(arc.radius)),
        half_(static_cast<float>(arc.width / 2.0)),
        progress_(static_cast<float>(std::clamp(arc.progress, 0.0, 1.0))),
        hasArc_(arc.progress > RingArc::leastProgress),
        endX_(radius_ * std::sin(progress_ * wholeTurn)),
        endY_(-radius_ * std::cos(progress_ * wholeTurn)),
        track_(Premultiplied::of(arc.track, arc.track.alpha)),
        head_(Premultiplied::of(arc.head, 1.0)),
        tail_(Premultiplied::of(arc.tail, 1.0)),
        cap_(std::asin(half_ / radius_) / wholeTurn),
        trackPixel_(toPixel(track_)) {
    seam_ = std::max((progress_ + 1.0F) / 2.0F, std::min(progress_ + cap_, 0.999F));
    for (std::size_t i = 0; i < arcPixels_.size(); ++i) {
      arcPixels_[i] = toPixel(along((static_cast<float>(i) + 0.5F) / static_cast<float>(arcPixels_.size())));
    }
  }

  QRgb inside(float turn) const {
    if (hasArc_ && turn <= progress_) {
      const float place = turn / progress_ * static_cast<float>(arcPixels_.size());
      return arcPixels_[std::min(static_cast<std::size_t>(place), arcPixels_.size() - 1)];
    }
    return trackPixel_;
  }

  /// Whether a round end of the arc may reach `turn`.
  bool isAtEnd(float turn) const {
    const float reach = 1.3F * cap_;
    return hasArc_ && turn > progress_ && (turn < progress_ + reach || turn > 1.0F - reach);
  }

  QRgb at(float dx, float dy, float turn, float coverage) const {
    const Premultiplied track = track_ * coverage;
    if (!hasArc_) return toPixel(track);
    const float arc = turn <= progress_ ? coverage : isAtEnd(turn) ? endsCover(dx, dy) : 0.0F;
    return toPixel((colourAt(turn) * arc).over(track));
  }

 private:
  float endsCover(float dx, float dy) const {
    const float fromStart = std::hypot(dx, dy + radius_), fromEnd = std::hypot(dx - endX_, dy - endY_);
    return covered(half_ - std::min(fromStart, fromEnd));
  }

  Premultiplied along(float share) const { return head_ * share + tail_ * (1.0F - share); }

  Premultiplied colourAt(float turn) const {
    if (turn > progress_) return turn < seam_ ? head_ : tail_;
    return along(turn / progress_);
  }

  float radius_, half_, progress_;
  bool hasArc_;
  float endX_, endY_;
  Premultiplied track_, head_, tail_;
  float cap_, seam_ = 1.0F;
  QRgb trackPixel_;
  std::array<QRgb, 256> arcPixels_{};
};

}  // namespace

void RingBand::measure(const QSize& size, const RingArc& arc) {
  if (size_ == size && radius_ == arc.radius && width_ == arc.width) return;
  size_ = size;
  radius_ = arc.radius;
  width_ = arc.width;
  places_.clear();
  const auto centreX = static_cast<float>(size.width()) / 2.0F;
  const auto centreY = static_cast<float>(size.height()) / 2.0F;
  const auto radius = static_cast<float>(arc.radius), half = static_cast<float>(arc.width / 2.0);
  for (int y = 0; y < size.height(); ++y) {
    for (int x = 0; x < size.width(); ++x) {
      const float dx = static_cast<float>(x) + 0.5F - centreX, dy = static_cast<float>(y) + 0.5F - centreY;
      const float distance = std::sqrt(dx * dx + dy * dy);
      if (std::abs(distance - radius) >= half + 0.5F) continue;
      const float coverage = covered(half - std::abs(distance - radius));
      const float turn = std::atan2(dx, -dy) / wholeTurn;
      const float units = (turn < 0.0F ? turn + 1.0F : turn) * turnUnits;
      places_.push_back({static_cast<std::uint16_t>(x), static_cast<std::uint16_t>(y),
                         static_cast<std::uint16_t>(std::min(units, turnUnits - 1.0F)),
                         static_cast<std::uint8_t>(std::lround(coverage * fullCoverage))});
    }
  }
}

void RingBand::paint(QImage& image, const RingArc& arc) {
  measure(image.size(), arc);
  const Band band(arc);
  const float centreX = static_cast<float>(image.width()) / 2.0F;
  const float centreY = static_cast<float>(image.height()) / 2.0F;
  auto* pixels = reinterpret_cast<QRgb*>(image.bits());
  const auto stride = static_cast<std::ptrdiff_t>(image.bytesPerLine() / 4);
  for (const auto& place : places_) {
    const float turn = static_cast<float>(place.turn) / turnUnits;
    QRgb& pixel = pixels[place.y * stride + place.x];
    if (place.coverage == 255 && !band.isAtEnd(turn)) {
      pixel = band.inside(turn);
    } else {
      pixel =
          band.at(static_cast<float>(place.x) + 0.5F - centreX, static_cast<float>(place.y) + 0.5F - centreY,
                  turn, static_cast<float>(place.coverage) / fullCoverage);
    }
  }
}

}  // namespace vorli::ui
