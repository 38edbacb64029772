#include "ui/kit/SoftShadow.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace vorli::ui {
namespace {

// Runs one pass of a box blur over a line of `count` bytes that are `step` apart.
void blurLine(uchar* first, qsizetype count, qsizetype step, qsizetype radius, std::vector<uchar>& copy) {
  for (qsizetype i = 0; i < count; ++i) copy[static_cast<std::size_t>(i)] = first[i * step];
  const qsizetype width = 2 * radius + 1;
  qsizetype sum = 0;
  for (qsizetype i = 0; i < std::min(radius, count); ++i) sum += copy[static_cast<std::size_t>(i)];
  for (qsizetype i = 0; i < count; ++i) {
    const qsizetype entering = i + radius;
    const qsizetype leaving = i - radius;
    if (entering < count) sum += copy[static_cast<std::size_t>(entering)];
    first[i * step] = static_cast<uchar>(sum / width);
    if (leaving >= 0) sum -= copy[static_cast<std::size_t>(leaving)];
  }
}

constexpr int passes = 3;

int radiusOfPass(double deviationPixels) {
  return static_cast<int>(
      std::lround((std::sqrt(4.0 * deviationPixels * deviationPixels + 1.0) - 1.0) / 2.0));
}

// Three box blurs come within 3 % of a Gaussian of that standard deviation.
void blur(QImage& mask, double deviationPixels) {
  const int radius = radiusOfPass(deviationPixels);
  if (radius == 0) return;
  std::vector<uchar> copy(static_cast<std::size_t>(std::max(mask.width(), mask.height())));
  for (int pass = 0; pass < passes; ++pass) {
    for (int y = 0; y < mask.height(); ++y) blurLine(mask.scanLine(y), mask.width(), 1, radius, copy);
    for (int x = 0; x < mask.width(); ++x)
      blurLine(mask.bits() + x, mask.height(), mask.bytesPerLine(), radius, copy);
  }
}

// The pixels in the middle of a line, `count` from `first` on, in which the shadow of a rectangle is the
// same. A smaller picture of the shadow needs only one of them.
struct Middle {
  int first, count, length;

  // `start` and `end` are those of the rectangle, and `reach` is the distance at which a corner still changes
  // the shadow. All in pixels.
  static Middle of(double start, double end, double reach, int length) {
    const int first = static_cast<int>(std::ceil(start + reach));
    const int count = static_cast<int>(std::floor(end - reach)) - first;
    return count > 1 ? Middle{first, count, length} : Middle{length, 0, length};
  }
  int saved() const { return std::max(0, count - 1); }
};

struct Span {
  int from, length, shownFrom, shownLength;
};

// Returns the three parts of the smaller picture and the places where they are shown: before the middle, the
// middle, and after it.
std::array<Span, 3> spansOf(const Middle& middle) {
  const int small = std::min(1, middle.count), after = middle.first + middle.count;
  return {{{0, middle.first, 0, middle.first},
           {middle.first, small, middle.first, middle.count},
           {middle.first + small, middle.length - after, after, middle.length - after}}};
}

}  // namespace

QImage softShadow(const QPainterPath& shape, double deviation, const QColor& colour, const QSize& size,
                  const QTransform& toPixels) {
  QImage mask(size, QImage::Format_Alpha8);
  mask.fill(Qt::transparent);
  {
    QPainter painter(&mask);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setTransform(toPixels);
    painter.fillPath(shape, Qt::black);
  }
  blur(mask, deviation * toPixels.m11());
  QImage image(size, QImage::Format_ARGB32_Premultiplied);
  image.fill(colour);
  QPainter painter(&image);
  painter.setCompositionMode(QPainter::CompositionMode_DestinationIn);
  painter.drawImage(0, 0, mask);
  return image;
}

void drawSoftShadow(QPainter& painter, const RoundedRectangle& shape, double deviation, const QColor& colour,
                    const QSize& size, double ratio) {
  const QRectF place = shape.place;
  const double reach = shape.radius * ratio + passes * radiusOfPass(deviation * ratio);
  const auto across = Middle::of(place.left() * ratio, place.right() * ratio, reach, size.width());
  const auto down = Middle::of(place.top() * ratio, place.bottom() * ratio, reach, size.height());
  QPainterPath path;
  path.addRoundedRect(place.adjusted(0.0, 0.0, -across.saved() / ratio, -down.saved() / ratio), shape.radius,
                      shape.radius);
  const QImage small = softShadow(path, deviation, colour, size - QSize(across.saved(), down.saved()),
                                  QTransform::fromScale(ratio, ratio));
  for (const Span& row : spansOf(down)) {
    for (const Span& column : spansOf(across)) {
      if (row.shownLength <= 0 || column.shownLength <= 0) continue;
      painter.drawImage(QRect(column.shownFrom, row.shownFrom, column.shownLength, row.shownLength), small,
                        QRect(column.from, row.from, column.length, row.length));
    }
  }
}

}  // namespace vorli::ui
