#pragma once

#include <QBuffer>
#include <QByteArray>
#include <QColor>
#include <QImage>
#include <QSize>
#include <string>

namespace vorli::ui {

/// The bytes of a PNG file of one colour.
inline std::string pngOf(const QSize& size, const QColor& colour) {
  QImage image(size, QImage::Format_ARGB32);
  image.fill(colour);
  QByteArray bytes;
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::WriteOnly);
  image.save(&buffer, "PNG");
  return bytes.toStdString();
}

}  // namespace vorli::ui
