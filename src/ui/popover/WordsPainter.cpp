#include "ui/popover/WordsPainter.h"

#include "ui/popover/ControlPainter.h"
#include "ui/popover/CulpritPainter.h"
#include "ui/popover/PopoverPalette.h"
#include "ui/popover/TextStyle.h"

#include <QPainter>

namespace vorli::ui {
namespace {

constexpr double belowLast = 8.0;  // room for a focus ring

void paintLines(QPainter& painter, const std::vector<PlacedText>& lines, const TextStyle& style,
                const Colour& colour) {
  for (const auto& line : lines) style.draw(painter, line.text, line.origin, colour);
}

void paintWords(QPainter& painter, const WordsPicture& words, const PopoverLayout& layout,
                const PopoverPalette& palette) {
  const auto& styles = PopoverTextStyles::shared();
  painter.setOpacity(words.sentence.opacity);
  paintLines(painter, layout.headline, styles.headline, palette.headline);
  paintLines(painter, layout.aside, styles.aside, palette.aside);
  if (words.banner) {
    painter.setOpacity(words.banner->opacity);
    paintBanner(painter, *layout.banner, palette);
  }
  if (words.link) {
    painter.setOpacity(words.link->opacity);
    paintLink(painter, *layout.link, layout.linkSymbol, words.link->control, palette);
  }
  if (words.culprits) {
    painter.setOpacity(words.culprits->opacity);
    paintCulprits(painter, *layout.culprits, words.culprits->names, palette);
  }
  if (words.quit) {
    painter.setOpacity(words.quit->opacity);
    paintQuit(painter, *layout.quit, *words.quit, palette);
  }
  painter.setOpacity(1.0);
  paintGear(painter, words.gear, palette);
}

}  // namespace

WordsPainter::Drawing WordsPainter::draw(const WordsPicture& words, Appearance appearance,
                                         double pixelRatio) {
  if (drawn_ == words && appearance_ == appearance && pixelRatio_ == pixelRatio) return {image_, parts_};
  if (image_.isNull() || pixelRatio_ != pixelRatio) {
    image_ = QImage((QSizeF(PopoverMetrics::width, PopoverMetrics::tallest) * pixelRatio).toSize(),
                    QImage::Format_ARGB32_Premultiplied);
  }
  image_.fill(Qt::transparent);
  drawn_ = words;
  appearance_ = appearance;
  pixelRatio_ = pixelRatio;

  const auto layout = PopoverLayout::of(words, pixelRatio);
  const double top = std::floor(words.headlineTop);
  parts_ = {PopoverMetrics::gear,
            {0.0, top, PopoverMetrics::width, std::ceil(layout.bottom + belowLast) - top}};
  QPainter painter(&image_);
  painter.scale(pixelRatio, pixelRatio);
  painter.setRenderHint(QPainter::Antialiasing);
  paintWords(painter, words, layout, PopoverPalette::of(appearance));
  return {image_, parts_};
}

void WordsPainter::forget() {
  image_ = {};
  drawn_.reset();
}

}  // namespace vorli::ui
