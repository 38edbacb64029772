#include "ui/popover/CardShadowPainter.h"

#include "ui/light/Dither.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <vector>

namespace vorli::ui {
namespace {

constexpr int samplesPerPoint = 16;

double normalDistribution(double x) {
  return 0.5 * (1.0 + std::erf(x / std::numbers::sqrt2));
}

/// One shadow as a function of the distance from its outline: the edge of a Gaussian blur that ends at
/// `reach`.
class Falloff {
 public:
  explicit Falloff(const CardShadow& shadow) : reach_(shadow.reach) {
    constexpr double end = 2.0;  // the last points fade to nothing
    const auto count = static_cast<std::size_t>(2.0 * reach_ * samplesPerPoint) + 1;
    shine_.reserve(count + 1);
    for (std::size_t i = 0; i < count; ++i) {
      const double distance = static_cast<double>(i) / samplesPerPoint - reach_;
      const double opacity = shadow.opacity * normalDistribution(-distance / (reach_ / 2.0));
      shine_.push_back(static_cast<float>(1.0 - opacity * std::clamp((reach_ - distance) / end, 0.0, 1.0)));
    }
    shine_.push_back(1.0F);
  }

  /// Share of the background that shines through at `distance` points outside of the outline.
  float at(float distance) const {
    const float place = (distance + static_cast<float>(reach_)) * static_cast<float>(samplesPerPoint) + 0.5F;
    const float last = static_cast<float>(shine_.size() - 1);
    return shine_[static_cast<std::size_t>(std::clamp(place, 0.0F, last))];
  }

 private:
  double reach_;
  std::vector<float> shine_;
};

/// One shadow of a card at the origin. Its corners are rounder than the card's, the more the farther it
/// reaches.
class ShadowShape {
 public:
  ShadowShape(const QSizeF& card, double radius, const CardShadow& shadow)
      : falloff_(shadow),
        centreX_(static_cast<float>(card.width() / 2.0)),
        centreY_(static_cast<float>(card.height() / 2.0 + shadow.fall)) {
    constexpr double rounding = 0.35;
    const double half = std::min(card.width(), card.height()) / 2.0;
    radius_ = static_cast<float>(std::min(radius + rounding * shadow.reach, half));
    straightX_ = centreX_ - radius_;
    straightY_ = static_cast<float>(card.height() / 2.0) - radius_;
  }

  /// Whether the outline is straight at this column, so that the distance depends on the row alone.
  bool isStraightAt(float x) const { return std::abs(x - centreX_) <= straightX_; }

  float shineAt(float x, float y) const {
    const float beyondX = std::abs(x - centreX_) - straightX_, beyondY = std::abs(y - centreY_) - straightY_;
    if (beyondX <= 0.0F || beyondY <= 0.0F) return falloff_.at(std::max(beyondX, beyondY) - radius_);
    return falloff_.at(std::sqrt(beyondX * beyondX + beyondY * beyondY) - radius_);
  }

 private:
  Falloff falloff_;
  float centreX_, centreY_;
  float radius_ = 0.0F, straightX_ = 0.0F, straightY_ = 0.0F;
};

/// Rounds a premultiplied colour by the dither.
class DitheredColour {
 public:
  explicit DitheredColour(const Colour& colour)
      : parts_{1.0F, static_cast<float>(colour.red), static_cast<float>(colour.green),
               static_cast<float>(colour.blue)} {}

  QRgb at(float opacity, int x, int y) const {
    const float threshold =
        static_cast<float>(ditherPattern[static_cast<std::size_t>(y & 7)][static_cast<std::size_t>(x & 7)]) /
        64.0F;
    if (opacity <= 0.0F) return 0;
    QRgb pixel = 0;
    for (const float part : parts_)
      pixel = pixel << 8 | static_cast<QRgb>(part * opacity * 255.0F + threshold);
    return pixel;
  }

 private:
  std::array<float, 4> parts_;  // alpha, red, green, blue
};

}  // namespace

QImage cardShadow(const QSizeF& card, double radius, const QMargins& around, const PopoverPalette& palette,
                  double pixelRatio) {
  QImage image((card.grownBy(around) * pixelRatio).toSize(), QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  const std::array shapes{ShadowShape(card, radius, palette.shadows[0]),
                          ShadowShape(card, radius, palette.shadows[1])};
  const DitheredColour colour(palette.shadow);
  const auto point = [pixelRatio](int pixel, int margin) {
    return static_cast<float>((pixel + 0.5) / pixelRatio - margin);
  };
  const auto opacityAt = [&shapes](float x, float y) {
    return 1.0F - shapes[0].shineAt(x, y) * shapes[1].shineAt(x, y);
  };
  const int width = image.width();
  int straight = 0;  // the columns up to here, and their mirror images, differ from each other
  while (straight < width / 2 && !std::ranges::all_of(shapes, [&](const auto& shape) {
           return shape.isStraightAt(point(straight, around.left()));
         })) {
    ++straight;
  }
  for (int row = 0; row < image.height(); ++row) {
    auto* pixels = reinterpret_cast<QRgb*>(image.scanLine(row));
    const float y = point(row, around.top());
    for (int x = 0; x < straight; ++x) {
      const float opacity = opacityAt(point(x, around.left()), y);
      pixels[x] = colour.at(opacity, x, row);
      pixels[width - 1 - x] = colour.at(opacity, width - 1 - x, row);
    }
    if (y > 1.0F && y < static_cast<float>(card.height()) - 1.0F) continue;  // the card covers the rest
    const float opacity = opacityAt(static_cast<float>(card.width() / 2.0), y);
    std::array<QRgb, 8> pattern{};
    for (int x = 0; x < 8; ++x) pattern[static_cast<std::size_t>(x)] = colour.at(opacity, x, row);
    for (int x = straight; x < width - straight; ++x) pixels[x] = pattern[static_cast<std::size_t>(x & 7)];
  }
  return image;
}

}  // namespace vorli::ui
