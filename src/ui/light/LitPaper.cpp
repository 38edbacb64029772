#include "ui/light/LitPaper.h"

#include "base/Animated.h"
#include "ui/light/Dither.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace vorli::ui {
namespace {

// A row of the pattern in the format of the pixels, long enough to be read from any of its eight columns.
using DitherRow = std::array<std::array<std::uint16_t, 4>, 12>;

constexpr std::array<DitherRow, 8> makeDither() {
  std::array<DitherRow, 8> rows{};
  for (std::size_t y = 0; y < rows.size(); ++y) {
    for (std::size_t x = 0; x < rows[y].size(); ++x) {
      rows[y][x].fill(static_cast<std::uint16_t>(ditherPattern[y][x & 7] * 4));
    }
  }
  return rows;
}
constexpr auto dither = makeDither();

std::uint16_t lane(double component) {
  return static_cast<std::uint16_t>(std::clamp(component, 0.0, 1.0) * 0xFF00);
}

// Rounds everything down, so that no sum overflows its lane.
LaidLight laid(const Premultiplied& light) {
  constexpr std::uint16_t opaque = 0xFF00;
  const auto share = static_cast<std::uint16_t>(std::clamp(1.0F - light.alpha, 0.0F, 1.0F) * 0xFFFF);
  return LaidLight{lane(light.blue), lane(light.green), lane(light.red), opaque, share, share, share, 0};
}

// Returns the colour of the paper in one row of device pixels.
PixelLanes paperAt(int y, const LitPaperPlace& place, const Paper& paper) {
  const double below = (y + 0.5 - place.paperTop) / (paper.height * place.pixelRatio);
  const Colour colour = mix(paper.top, paper.bottom, std::clamp(below, 0.0, 1.0));
  const std::uint16_t blue = lane(colour.blue), green = lane(colour.green), red = lane(colour.red);
  return PixelLanes{blue, green, red, 0, blue, green, red, 0};
}

/// One row of device pixels.
struct PaperRow {
  QRgb* pixels;
  int left, end;
  PixelLanes paper;
  const DitherRow* pattern;

  bool holds(int x) const { return x >= left && x < end; }
  void put(int x, PixelLanes value) const {
    pixels[x] = firstPixel(value + loadLanes(&(*pattern)[static_cast<std::size_t>(x & 7)]));
  }
  void putFour(int x, PixelLanes first, PixelLanes second) const {
    const auto* from = &(*pattern)[static_cast<std::size_t>(x & 7)];
    storePixels(pixels + x, first + loadLanes(from), second + loadLanes(from + 2));
  }
};

// Computes each pixel once for itself and for its mirror image. The two start in the middle, at `left` and
// `right`, and move apart.
void paintRow(const PaperRow& row, int left, int right, const std::uint16_t* distances,
              const LaidLight* table) {
  const auto onPaper = [&](int i) {
    const LaidLight &first = table[distances[i]], &second = table[distances[i + 1]];
    return firstHalves(first, second) + upperProduct(secondHalves(first, second), row.paper);
  };
  int i = std::max({0, row.left - right, left - row.end + 1});  // the row may not reach the middle
  const int both = std::min(left - row.left, row.end - 1 - right);
  for (; i + 3 <= both && right + i >= row.left && left - i < row.end; i += 4) {
    const PixelLanes first = onPaper(i), second = onPaper(i + 2);
    row.putFour(right + i, first, second);
    row.putFour(left - i - 3, swappedHalves(second), swappedHalves(first));
  }
  const int last = std::max(left - row.left, row.end - 1 - right);
  for (; i <= last; ++i) {
    const LaidLight& sample = table[distances[i]];
    const PixelLanes value = sample + upperProduct(swappedHalves(sample), row.paper);
    if (row.holds(right + i)) row.put(right + i, value);
    if (row.holds(left - i)) row.put(left - i, value);
  }
}

}  // namespace

// Pads the table beyond the light's end with transparent samples, up to the farthest distance.
void LitPaper::lay(std::span<const Premultiplied> light) {
  const std::size_t farthest = distances_.empty() ? 0 : distances_.back();
  table_.resize(std::max(farthest + 1, light.size()));
  std::transform(light.begin(), light.end(), table_.begin(), laid);
  std::fill(table_.begin() + static_cast<std::ptrdiff_t>(light.size()), table_.end(), laid({}));
}

void LitPaper::measure(const QRect& area, QPoint centre, float samplesPerPixel) {
  const auto reach = [](int first, int last, int middle) {
    return std::max(middle - first, last + 1 - middle);
  };
  const int columns = reach(area.left(), area.right(), centre.x());
  const int rows = reach(area.top(), area.bottom(), centre.y());
  const bool isWideEnough = samplesPerPixel == samplesPerPixel_ && columns <= columns_;
  if (isWideEnough && rows <= rows_) return;
  if (!isWideEnough) columns_ = columns;
  rows_ = rows;
  samplesPerPixel_ = samplesPerPixel;
  distances_.clear();
  distances_.reserve(static_cast<std::size_t>(columns_) * static_cast<std::size_t>(rows_));
  for (int row = 0; row < rows_; ++row) {
    const float dy = static_cast<float>(row) + 0.5F;
    for (int column = 0; column < columns_; ++column) {
      const float dx = static_cast<float>(column) + 0.5F;
      const float samples = std::sqrt(dx * dx + dy * dy) * samplesPerPixel;
      distances_.push_back(static_cast<std::uint16_t>(std::min(samples, 65535.0F)));
    }
  }
}

void LitPaper::paint(QImage& image, const QRect& area, const LitPaperPlace& place, const Paper& paper,
                     std::span<const Premultiplied> light, int samplesPerPoint) {
  const QRect drawn = area & image.rect();
  if (drawn.isEmpty()) return;
  measure(drawn, place.centre, static_cast<float>(samplesPerPoint / place.pixelRatio));
  lay(light);
  const int right = place.centre.x(), below = place.centre.y();
  const int left = right - 1, above = below - 1;
  for (int y = drawn.top(); y <= drawn.bottom(); ++y) {
    const PaperRow row{reinterpret_cast<QRgb*>(image.scanLine(y)), drawn.left(), drawn.right() + 1,
                       paperAt(y, place, paper), &dither[static_cast<std::size_t>(y & 7)]};
    const auto away = static_cast<std::ptrdiff_t>(y >= below ? y - below : above - y);
    paintRow(row, left, right, distances_.data() + away * columns_, table_.data());
  }
}

void paintRoundLight(QImage& image, const QRect& clip, QPointF centre, std::span<const Premultiplied> light,
                     int samplesPerPixel) {
  const double reach = static_cast<double>(light.size()) / samplesPerPixel;
  const QRect box = QRectF(centre.x() - reach, centre.y() - reach, 2.0 * reach, 2.0 * reach).toAlignedRect() &
                    clip & image.rect();
  std::vector<LaidLight> table(light.size());
  std::transform(light.begin(), light.end(), table.begin(), laid);
  const auto scale = static_cast<float>(samplesPerPixel);
  const PixelLanes half = PixelLanes{} + std::uint16_t{0x80};
  for (int y = box.top(); y <= box.bottom(); ++y) {
    auto* row = reinterpret_cast<QRgb*>(image.scanLine(y));
    const auto dy = static_cast<float>(y + 0.5 - centre.y());
    for (int x = box.left(); x <= box.right(); ++x) {
      const auto dx = static_cast<float>(x + 0.5 - centre.x());
      const auto index = static_cast<std::size_t>(std::sqrt(dx * dx + dy * dy) * scale);
      if (index >= table.size()) continue;
      const LaidLight& sample = table[index];
      row[x] = firstPixel(sample + upperProduct(swappedHalves(sample), lanesOf(row[x])) + half);
    }
  }
}

}  // namespace vorli::ui
