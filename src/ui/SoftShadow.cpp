#include "ui/SoftShadow.h"

#include <QPainter>
#include <algorithm>
#include <cmath>
#include <vector>

namespace vorli::ui {
namespace {

// One pass of a box blur over a line of `count` bytes that lie `step` apart.
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

// Three box blurs come within 3 % of the bell curve of that deviation.
void blur(QImage& mask, double deviationPixels) {
  constexpr int passes = 3;
  const int radius =
      static_cast<int>(std::lround((std::sqrt(4.0 * deviationPixels * deviationPixels + 1.0) - 1.0) / 2.0));
  if (radius == 0) return;
  std::vector<uchar> copy(static_cast<std::size_t>(std::max(mask.width(), mask.height())));
  for (int pass = 0; pass < passes; ++pass) {
    for (int y = 0; y < mask.height(); ++y) blurLine(mask.scanLine(y), mask.width(), 1, radius, copy);
    for (int x = 0; x < mask.width(); ++x)
      blurLine(mask.bits() + x, mask.height(), mask.bytesPerLine(), radius, copy);
  }
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

}  // namespace vorli::ui
