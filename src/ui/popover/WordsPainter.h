#pragma once

#include "ui/popover/PopoverLayout.h"
#include "ui/popover/PopoverPicture.h"

#include <QImage>
#include <QRectF>
#include <optional>
#include <vector>

namespace vorli::ui {

/// Draws the sentences, the controls under them and the gear on a transparent background. Caches the picture
/// until other words are requested.
class WordsPainter {
 public:
  struct Drawing {
    const QImage& image;
    const std::vector<QRectF>& parts;  // in points; nothing is drawn outside of them
  };

  /// The origin of the picture is the content's. The references are valid until the next call.
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
