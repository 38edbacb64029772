#include "ui/popover/LitPaper.h"

#include "base/Animated.h"
#include "ui/popover/PopoverLayout.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <vector>

namespace vorli::ui {
namespace {

// Four floats that the compiler keeps in one register; blue, green, red as in memory, then what of the ground
// shines through.
using Lanes = float __attribute__((vector_size(16)));
using WholeLanes = std::int32_t __attribute__((vector_size(16)));

constexpr QRgb opaque = 0xFF000000U;

// An ordered pattern of 8 x 8, each value once, from 0 to 63/64: what is left of a component after rounding
// down is carried by that share of the pixels.
constexpr std::array<std::array<std::uint8_t, 8>, 8> ditherPattern{{{0, 32, 8, 40, 2, 34, 10, 42},
                                                                    {48, 16, 56, 24, 50, 18, 58, 26},
                                                                    {12, 44, 4, 36, 14, 46, 6, 38},
                                                                    {60, 28, 52, 20, 62, 30, 54, 22},
                                                                    {3, 35, 11, 43, 1, 33, 9, 41},
                                                                    {51, 19, 59, 27, 49, 17, 57, 25},
                                                                    {15, 47, 7, 39, 13, 45, 5, 37},
                                                                    {63, 31, 55, 23, 61, 29, 53, 21}}};

Lanes lanesOf(const Colour& colour) {
  return Lanes{static_cast<float>(colour.blue), static_cast<float>(colour.green),
               static_cast<float>(colour.red), 0.0F} *
         255.0F;
}

Lanes lanesOf(const Premultiplied& light) {
  const Lanes colour = Lanes{light.blue, light.green, light.red, 0.0F} * 255.0F;
  return colour + Lanes{0.0F, 0.0F, 0.0F, 1.0F - light.alpha};
}

QRgb pixelOf(Lanes value) {
  const WholeLanes whole = __builtin_convertvector(value, WholeLanes);
  return opaque | static_cast<QRgb>(whole[2]) << 16 | static_cast<QRgb>(whole[1]) << 8 |
         static_cast<QRgb>(whole[0]);
}

// The colour of the paper in one row of device pixels.
Lanes paperAt(int y, const LitPaperPlace& place, const PopoverPalette& palette) {
  const double below = (y + 0.5 - place.paperTop) / (PopoverMetrics::tallest * place.pixelRatio);
  return lanesOf(mix(palette.paperTop, palette.paperBottom, std::clamp(below, 0.0, 1.0)));
}

// Half of a row's chord of a circle; none when the row passes outside.
double halfChord(double radius, double distance) {
  return distance >= radius ? 0.0 : std::sqrt(radius * radius - distance * distance);
}

struct Span {
  int first, end;
};
Span lit(double centre, double half, int left, int right) {
  return {std::clamp(static_cast<int>(std::floor(centre - half)), left, right),
          std::clamp(static_cast<int>(std::ceil(centre + half)), left, right)};
}

}  // namespace

void paintLitPaper(QImage& image, const QRect& area, const LitPaperPlace& place,
                   const PopoverPalette& palette, std::span<const Premultiplied> light, int samplesPerPoint) {
  constexpr float ditherStep = 1.0F / 64.0F;
  std::vector<Lanes> table;
  table.reserve(light.size() + 1);
  for (const auto& sample : light) table.push_back(lanesOf(sample));
  const Lanes dark{0.0F, 0.0F, 0.0F, 1.0F};
  table.push_back(dark);

  const double samplesPerPixel = samplesPerPoint / place.pixelRatio;
  const double reach = static_cast<double>(light.size()) / samplesPerPixel;
  const auto scale = static_cast<float>(samplesPerPixel);
  const QRect drawn = area & image.rect();
  for (int y = drawn.top(); y <= drawn.bottom(); ++y) {
    const Lanes paper = paperAt(y, place, palette);
    const auto& pattern = ditherPattern[static_cast<std::size_t>(y & 7)];
    std::array<Lanes, 8> dither;
    for (std::size_t i = 0; i < dither.size(); ++i)
      dither[i] = Lanes{} + static_cast<float>(pattern[i]) * ditherStep;
    std::array<QRgb, 8> unlit;
    for (std::size_t i = 0; i < unlit.size(); ++i) unlit[i] = pixelOf(paper + dither[i]);

    auto* row = reinterpret_cast<QRgb*>(image.scanLine(y));
    const double dy = y + 0.5 - place.centre.y();
    const Span span = lit(place.centre.x(), halfChord(reach, std::abs(dy)), drawn.left(), drawn.right() + 1);
    for (int x = drawn.left(); x < span.first; ++x) row[x] = unlit[static_cast<std::size_t>(x & 7)];
    const auto dySquare = static_cast<float>(dy * dy);
    const auto centreX = static_cast<float>(place.centre.x() - 0.5);
    for (int x = span.first; x < span.end; ++x) {
      const float dx = static_cast<float>(x) - centreX;
      const auto index = static_cast<std::size_t>(std::sqrt(dx * dx + dySquare) * scale);
      const Lanes sample = table[std::min(index, table.size() - 1)];
      row[x] = pixelOf(sample + paper * sample[3] + dither[static_cast<std::size_t>(x & 7)]);
    }
    for (int x = span.end; x <= drawn.right(); ++x) row[x] = unlit[static_cast<std::size_t>(x & 7)];
  }
}

void paintRoundLight(QImage& image, const QRect& clip, QPointF centre, std::span<const Premultiplied> light,
                     int samplesPerPixel) {
  const double reach = static_cast<double>(light.size()) / samplesPerPixel;
  const QRect box = QRectF(centre.x() - reach, centre.y() - reach, 2.0 * reach, 2.0 * reach).toAlignedRect() &
                    clip & image.rect();
  const Lanes half = Lanes{} + 0.5F;
  for (int y = box.top(); y <= box.bottom(); ++y) {
    auto* row = reinterpret_cast<QRgb*>(image.scanLine(y));
    const double dy = y + 0.5 - centre.y();
    for (int x = box.left(); x <= box.right(); ++x) {
      const double dx = x + 0.5 - centre.x();
      const auto index = static_cast<std::size_t>(std::sqrt(dx * dx + dy * dy) * samplesPerPixel);
      if (index >= light.size()) continue;
      const Lanes sample = lanesOf(light[index]);
      const Lanes ground{static_cast<float>(qBlue(row[x])), static_cast<float>(qGreen(row[x])),
                         static_cast<float>(qRed(row[x])), 0.0F};
      row[x] = pixelOf(sample + ground * sample[3] + half);
    }
  }
}

}  // namespace vorli::ui
