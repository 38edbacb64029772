#include "ui/popover/TextStyle.h"

#include "ui/kit/QtColour.h"
#include "ui/kit/Typeface.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QTextBoundaryFinder>
#include <algorithm>
#include <iterator>
#include <vector>

namespace vorli::ui {
namespace {

// The background is not flat, so subpixel antialiasing would leave colour fringes. Without horizontal
// hinting, the widths are those of the outlines at every scale. Vertical hinting gives thin and small strokes
// more contrast at 1x, and takes some from the others.
TextStyle style(QFont font, double tracking, QFont::HintingPreference hinting = QFont::PreferNoHinting) {
  font.setHintingPreference(hinting);
  font.setStyleStrategy(
      static_cast<QFont::StyleStrategy>(QFont::PreferAntialias | QFont::NoSubpixelAntialias));
  if (tracking != 0.0) font.setLetterSpacing(QFont::AbsoluteSpacing, tracking);
  return {font, tracking};
}

QFont italic(QFont font) {
  font.setItalic(true);
  return font;
}

PopoverTextStyles makeStyles() {
  constexpr auto vertical = QFont::PreferVerticalHinting;
  return {
      .headline = style(fraunces(17.0, QFont::Light), -0.05),
      .aside = style(italic(fraunces(14.0, QFont::Light)), 0.05, vertical),
      .label = style(geist(13.0, QFont::DemiBold), 0.13),
      .labelResting = style(geist(13.0, QFont::Medium), 0.13),
      .culprit = style(geist(11.0), 0.0, vertical),
      .name = style(geist(11.0, QFont::DemiBold), 0.0, vertical),
      .question = style(geist(12.0, QFont::Medium), 0.0),
      .button = style(geist(12.0, QFont::Medium), 0.0),
      .banner = style(geist(11.0, QFont::DemiBold), 0.9, vertical),
      .link = style(geist(11.0, QFont::Medium), 0.0, vertical),
  };
}

}  // namespace

double TextStyle::width(const QString& text) const {
  const double advance = QFontMetricsF(font).horizontalAdvance(text);
  return text.isEmpty() ? advance : advance - tracking;
}

void TextStyle::draw(QPainter& painter, const QString& text, const QPointF& origin,
                     const Colour& colour) const {
  painter.setFont(font);
  painter.setPen(qtColour(colour));
  painter.drawText(origin, text);
}

const PopoverTextStyles& PopoverTextStyles::shared() {
  static const PopoverTextStyles styles = makeStyles();
  return styles;
}

QString cutToWidth(const TextStyle& style, const QString& text, double width) {
  if (style.width(text) <= width) return text;
  const auto cutAt = [&text](qsizetype end) {
    QString cut = text.left(end);
    while (!cut.isEmpty() && cut.back().isSpace()) cut.chop(1);
    return cut + QStringLiteral("…");
  };
  std::vector<qsizetype> ends;  // of letters; trying them one by one would take seconds for a page of text
  QTextBoundaryFinder letters(QTextBoundaryFinder::Grapheme, text);
  while (letters.toNextBoundary() > 0) ends.push_back(letters.position());
  const auto tooFar = std::partition_point(ends.begin(), ends.end(),
                                           [&](qsizetype end) { return style.width(cutAt(end)) <= width; });
  return cutAt(tooFar == ends.begin() ? 0 : *std::prev(tooFar));
}

}  // namespace vorli::ui
