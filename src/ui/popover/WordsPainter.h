#pragma once

#include "ui/popover/PopoverLayout.h"
#include "ui/popover/PopoverPicture.h"

#include <QImage>
#include <QRectF>
#include <optional>
#include <vector>

namespace vorli::ui {

/// Draws the sentences, the controls under them and the gear on a clear ground, and keeps the picture until
/// other words are asked for.
class WordsPainter {
 public:
  struct Drawing {
    const QImage& image;
    const std::vector<QRectF>& parts;  // in points, outside of which nothing is drawn
  };

  /// The content's origin is the picture's. The references hold until the next call.
  Drawing draw(const WordsPicture& words, Appearance appearance, double pixelRatio);
  void forget();

 private:
  QImage image_;
  std::vector<QRectF> parts_;
  std::optional<WordsPicture> drawn_;
  Appearance appearance_ = Appearance::light;
  double pixelRatio_ = 0.0;
};

}  // namespace vorli::ui
