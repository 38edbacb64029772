#include "ui/popover/TextStyle.h"

#include "ui/QtColour.h"
#include "ui/Typeface.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QTextBoundaryFinder>
#include <algorithm>
#include <iterator>
#include <vector>

namespace vorli::ui {
namespace {

// The ground is not flat, so subpixel colour would fringe; without horizontal hinting the widths are those of
// the outlines at every scale.
TextStyle style(QFont font, double tracking) {
  font.setHintingPreference(QFont::PreferNoHinting);
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
  return {
      .headline = style(fraunces(17.0, QFont::Light), -0.05),
      .aside = style(italic(fraunces(14.0, QFont::Light)), 0.05),
      .label = style(geist(13.0, QFont::DemiBold), 0.13),
      .labelResting = style(geist(13.0, QFont::Medium), 0.13),
      .culprit = style(geist(11.0), 0.0),
      .name = style(geist(11.0, QFont::DemiBold), 0.0),
      .question = style(geist(12.0, QFont::Medium), 0.0),
      .button = style(geist(12.0, QFont::Medium), 0.0),
      .banner = style(geist(11.0, QFont::DemiBold), 0.9),
      .link = style(geist(11.0, QFont::Medium), 0.0),
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
  std::vector<qsizetype> ends;  // of letters; to try them one after the other would take seconds for a page
  QTextBoundaryFinder letters(QTextBoundaryFinder::Grapheme, text);
  while (letters.toNextBoundary() > 0) ends.push_back(letters.position());
  const auto tooFar = std::partition_point(ends.begin(), ends.end(),
                                           [&](qsizetype end) { return style.width(cutAt(end)) <= width; });
  return cutAt(tooFar == ends.begin() ? 0 : *std::prev(tooFar));
}

}  // namespace vorli::ui
