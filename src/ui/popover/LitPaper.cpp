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

Lanes lanesOf(const Premultiplied& light) {
  const Lanes colour = Lanes{light.blue, light.green, light.red, 0.0F} * 255.0F;
  return colour + Lanes{0.0F, 0.0F, 0.0F, 1.0F - light.alpha};
}

QRgb pixelOf(Lanes value) {
  const WholeLanes whole = __builtin_convertvector(value, WholeLanes);
  return opaque | static_cast<QRgb>(whole[2]) << 16 | static_cast<QRgb>(whole[1]) << 8 |
         static_cast<QRgb>(whole[0]);
}

// Red, green and blue side by side in one number, 21 bits each: 8 of the component and 13 of its fraction.
// One multiplication mixes all three.
constexpr int laneBits = 21, fractionBits = 13;
constexpr std::uint64_t inEachLane = 1 | std::uint64_t{1} << laneBits | std::uint64_t{1} << 2 * laneBits;
// Of those 13 bits the paper brings 3 and what shines through of it 10.
constexpr int paperBits = 3, shareBits = 10;

std::uint64_t packed(double red, double green, double blue, int bits) {
  const auto lane = [bits](double component) {
    return static_cast<std::uint64_t>(component * 255.0 * (1 << bits));
  };
  return lane(red) << 2 * laneBits | lane(green) << laneBits | lane(blue);
}

QRgb pixelOf(std::uint64_t lanes) {
  constexpr int toRed = 2 * laneBits + fractionBits - 16, toGreen = laneBits + fractionBits - 8;
  return opaque | (static_cast<QRgb>(lanes >> toRed) & 0xFF0000U) |
         (static_cast<QRgb>(lanes >> toGreen) & 0xFF00U) | (static_cast<QRgb>(lanes >> fractionBits) & 0xFFU);
}

// A sample of the light, ready to be laid over paper. The share is rounded down, so that no lane runs over.
struct LaidLight {
  std::uint64_t light;
  std::uint64_t paperShare;
};

std::vector<LaidLight> laid(std::span<const Premultiplied> light) {
  std::vector<LaidLight> table;
  table.reserve(light.size() + 1);
  for (const auto& sample : light) {
    const double share = std::clamp(1.0 - static_cast<double>(sample.alpha), 0.0, 1.0);
    table.push_back({packed(sample.red, sample.green, sample.blue, fractionBits),
                     static_cast<std::uint64_t>(share * (1 << shareBits))});
  }
  table.push_back({0, 1 << shareBits});
  return table;
}

// The colour of the paper in one row of device pixels.
std::uint64_t paperAt(int y, const LitPaperPlace& place, const PopoverPalette& palette) {
  const double below = (y + 0.5 - place.paperTop) / (PopoverMetrics::tallest * place.pixelRatio);
  const Colour colour = mix(palette.paperTop, palette.paperBottom, std::clamp(below, 0.0, 1.0));
  return packed(colour.red, colour.green, colour.blue, paperBits);
}

// Half of a row's chord of a circle; none when the row passes outside.
double halfChord(double radius, double distance) {
  return distance >= radius ? 0.0 : std::sqrt(radius * radius - distance * distance);
}

/// One row of device pixels.
struct Row {
  QRgb* pixels;
  int left, end;
  std::uint64_t paper;
  std::array<std::uint64_t, 8> dither;

  void put(int x, std::uint64_t lanes) const {
    pixels[x] = pixelOf(lanes + dither[static_cast<std::size_t>(x & 7)]);
  }
  void fill(int from, int to) const {
    const std::uint64_t unlit = paper << shareBits;
    for (int x = std::max(from, left); x < std::min(to, end); ++x) put(x, unlit);
  }
};

Row rowOf(QImage& image, int y, const QRect& drawn, std::uint64_t paper) {
  Row row{reinterpret_cast<QRgb*>(image.scanLine(y)), drawn.left(), drawn.right() + 1, paper, {}};
  const auto& pattern = ditherPattern[static_cast<std::size_t>(y & 7)];
  for (std::size_t i = 0; i < row.dither.size(); ++i) {
    row.dither[i] = inEachLane * (std::uint64_t{pattern[i]} << (fractionBits - 6));
  }
  return row;
}

// The left half of a row mirrors the right one: what is worked out for a pixel serves two. `twiceCentre` is
// in whole half pixels.
void paintLitRow(const Row& row, int twiceCentre, float dySquare, double half, float scale,
                 const std::vector<LaidLight>& table) {
  const int first = twiceCentre / 2;
  const int last = std::max(first, static_cast<int>(std::ceil(twiceCentre / 2.0 + half)));
  const auto centre = static_cast<float>(twiceCentre) / 2.0F - 0.5F;
  row.fill(row.left, twiceCentre - last);
  for (int x = first; x < last; ++x) {
    const int mirrored = twiceCentre - 1 - x;
    if (x >= row.end && mirrored < row.left) break;
    const float dx = static_cast<float>(x) - centre;
    const auto index = static_cast<std::size_t>(std::sqrt(dx * dx + dySquare) * scale);
    const LaidLight& sample = table[std::min(index, table.size() - 1)];
    const std::uint64_t lanes = sample.light + row.paper * sample.paperShare;
    if (x >= row.left && x < row.end) row.put(x, lanes);
    if (mirrored >= row.left && mirrored < row.end) row.put(mirrored, lanes);
  }
  row.fill(last, row.end);
}

}  // namespace

void paintLitPaper(QImage& image, const QRect& area, const LitPaperPlace& place,
                   const PopoverPalette& palette, std::span<const Premultiplied> light, int samplesPerPoint) {
  const auto table = laid(light);
  const double samplesPerPixel = samplesPerPoint / place.pixelRatio;
  const double reach = static_cast<double>(light.size()) / samplesPerPixel;
  const int twiceCentre = static_cast<int>(std::lround(2.0 * place.centre.x()));
  const QRect drawn = area & image.rect();
  for (int y = drawn.top(); y <= drawn.bottom(); ++y) {
    const Row row = rowOf(image, y, drawn, paperAt(y, place, palette));
    const double dy = y + 0.5 - place.centre.y();
    const double half = halfChord(reach, std::abs(dy));
    if (half <= 0.0) {
      row.fill(row.left, row.end);
    } else {
      paintLitRow(row, twiceCentre, static_cast<float>(dy * dy), half, static_cast<float>(samplesPerPixel),
                  table);
    }
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
