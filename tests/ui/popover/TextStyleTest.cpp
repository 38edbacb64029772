#include "ui/popover/TextStyle.h"

#include <QImage>
#include <QPainter>
#include <gtest/gtest.h>

namespace vorli::ui {
namespace {

const QString text = QStringLiteral("Time to polish it. Enjoy the calm.");

TextStyle withoutHinting(TextStyle style) {
  style.font.setHintingPreference(QFont::PreferNoHinting);
  return style;
}

// Mean opacity of the ink, weighted by the opacity: thin strokes that fall between two rows of pixels have
// little.
double contrastOf(const TextStyle& style) {
  QImage image(300, 40, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  {
    QPainter painter(&image);
    style.draw(painter, text, {10.0, 25.0}, {0.0, 0.0, 0.0});
  }
  double sum = 0.0, weighted = 0.0;
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) {
      const double alpha = qAlpha(image.pixel(x, y)) / 255.0;
      sum += alpha;
      weighted += alpha * alpha;
    }
  }
  return weighted / sum;
}

TEST(TextStyle, thinAndSmallTextsHaveMoreContrastThanWithoutHintingAndTheSameWidth) {
  const auto& styles = PopoverTextStyles::shared();
  for (const auto* style : {&styles.aside, &styles.culprit}) {
    EXPECT_GT(contrastOf(*style), contrastOf(withoutHinting(*style)) * 1.001);
    EXPECT_EQ(style->width(text), withoutHinting(*style).width(text));
  }
}

}  // namespace
}  // namespace vorli::ui
