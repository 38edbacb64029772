#include "ui/kit/Paragraph.h"

#include "ui/kit/Typeface.h"

#include <QFontDatabase>
#include <QFontMetricsF>
#include <QPainter>
#include <QTextBoundaryFinder>
#include <algorithm>
#include <cmath>
#include <iterator>
#include <utility>
#include <vector>

namespace vorli::ui {
namespace {

constexpr QChar nonBreakingHyphen(0x2011);

TextRole role(QFont font, double leading) {
  const double height = QFontMetricsF(font).height();
  return {font, std::max(leading, std::ceil(height - 2.0))};
}

QFont italicTitle(double points) {
  QFont font = fraunces(points, QFont::Light);
  font.setItalic(true);
  return font;
}

QFont tracked(QFont font, double spacing) {
  font.setLetterSpacing(QFont::AbsoluteSpacing, spacing);
  return font;
}

QString painted(QString text) {
  return text.replace(nonBreakingHyphen, u'-');
}

QString withoutTrailingSpace(QString line) {
  while (!line.isEmpty() && line.back().isSpace() && line.back() != QChar::Nbsp) line.chop(1);
  return line;
}

// Returns the end of the longest piece of `text`, starting at `from`, that fits; it has at least one
// character.
qsizetype endOfFittingStart(const QString& text, qsizetype from, const QFontMetricsF& metrics, double width) {
  qsizetype end = from + 1;
  while (end < text.size() && metrics.horizontalAdvance(painted(text.mid(from, end + 1 - from))) <= width)
    ++end;
  return end;
}

// Measures as few pieces as it can: a list has a thousand of these texts.
QStringList broken(const QString& text, const QFontMetricsF& metrics, double width) {
  std::vector<qsizetype> ends;  // of the lines that the text may be broken into
  QTextBoundaryFinder finder(QTextBoundaryFinder::Line, text);
  for (auto next = finder.toNextBoundary(); next >= 0; next = finder.toNextBoundary()) ends.push_back(next);

  QStringList lines;
  qsizetype from = 0;
  const auto lineTo = [&](qsizetype end) {
    return withoutTrailingSpace(painted(text.mid(from, end - from)));
  };
  const auto fits = [&](qsizetype end) { return metrics.horizontalAdvance(lineTo(end)) <= width; };
  while (from < text.size()) {
    qsizetype end = text.size();
    if (!fits(end)) {
      const auto first = std::ranges::upper_bound(ends, from);
      const auto tooFar = std::partition_point(first, ends.end(), fits);
      end = tooFar == first ? endOfFittingStart(text, from, metrics, width) : *std::prev(tooFar);
    }
    lines.push_back(lineTo(end));
    from = end;
  }
  if (lines.empty()) lines.push_back({});
  return lines;
}

QStringList balanced(const QString& text, const QFontMetricsF& metrics, double width) {
  QStringList best = broken(text, metrics, width);
  if (best.size() < 2) return best;
  double tooNarrow = width / static_cast<double>(best.size()) / 2.0;
  while (width - tooNarrow > 1.0) {
    const double middle = (tooNarrow + width) / 2.0;
    QStringList lines = broken(text, metrics, middle);
    if (lines.size() > best.size()) {
      tooNarrow = middle;
    } else {
      width = middle;
      best = std::move(lines);
    }
  }
  return best;
}

}  // namespace

TextRole TextRole::onboardingTitle() {
  return role(fraunces(31.0, QFont::Light, -0.014), 40.0);
}
TextRole TextRole::crashTitle() {
  return role(fraunces(28.0, QFont::Light, -0.014), 36.0);
}
TextRole TextRole::smallCrashTitle() {
  return role(fraunces(24.0, QFont::Light, -0.014), 32.0);
}
TextRole TextRole::pageTitle() {
  return role(fraunces(28.0, QFont::Light, -0.012), 36.0);
}
TextRole TextRole::emptyHeading() {
  return role(fraunces(22.0, QFont::Light, -0.008), 28.0);
}
TextRole TextRole::emptyText() {
  return role(geist(13.0), 20.0);
}
TextRole TextRole::groupTitle() {
  return role(italicTitle(15.0), 20.0);
}
TextRole TextRole::listHeading() {
  return role(italicTitle(16.0), 20.0);
}
TextRole TextRole::panelHeading() {
  return role(fraunces(15.0, QFont::Normal, -0.003), 20.0);
}
TextRole TextRole::pageSubtitle() {
  return role(geist(13.5), 20.0);
}
TextRole TextRole::onboardingSentence() {
  return role(geist(14.0), 22.0);
}
TextRole TextRole::crashBody() {
  return role(geist(13.5), 22.0);
}
TextRole TextRole::smallCrashBody() {
  return role(geist(13.5), 20.0);
}
TextRole TextRole::rowTitle() {
  return role(tracked(geist(13.5, QFont::Medium), -0.003 * 13.5), 18.0);
}
TextRole TextRole::rowText() {
  return role(geist(12.5), 18.0);
}
TextRole TextRole::meta() {
  return role(geist(11.5), 16.0);
}
TextRole TextRole::metaStatus() {
  return role(geist(11.5, QFont::Medium), 16.0);
}
TextRole TextRole::tab() {
  return role(geist(13.0, QFont::Medium), 18.0);
}
TextRole TextRole::button() {
  return role(geist(12.5, QFont::Medium), 16.0);
}
TextRole TextRole::largeButton() {
  return role(geist(14.0, QFont::Medium), 20.0);
}
TextRole TextRole::search() {
  return role(geist(13.0), 18.0);
}
TextRole TextRole::count() {
  return role(geist(12.0), 16.0);
}
TextRole TextRole::badge() {
  return role(tracked(geist(9.5, QFont::DemiBold), 0.06 * 9.5), 16.0);
}
TextRole TextRole::sortHint() {
  return role(tracked(geist(10.0, QFont::DemiBold), 0.07 * 10.0), 12.0);
}
TextRole TextRole::toast() {
  return role(geist(13.0), 18.0);
}
TextRole TextRole::toastName() {
  return role(geist(13.0, QFont::DemiBold), 18.0);
}
TextRole TextRole::status() {
  return role(geist(12.0, QFont::Medium), 16.0);
}
TextRole TextRole::footer() {
  return role(geist(12.0), 18.0);
}
TextRole TextRole::fixed() {
  QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
  font.setPointSizeF(11.0 * 0.75);
  return role(font, 16.0);
}

Paragraph::Paragraph(const QString& text, TextRole textRole, double width, Wrap wrap)
    : role_(std::move(textRole)) {
  const QFontMetricsF metrics(role_.font);
  lines_ = wrap == Wrap::balanced ? balanced(text, metrics, width) : broken(text, metrics, width);
}

double Paragraph::height() const {
  return role_.leading * static_cast<double>(lines_.size());
}

double Paragraph::naturalWidth() const {
  const QFontMetricsF metrics(role_.font);
  double widest = 0.0;
  for (const QString& line : lines_) widest = std::max(widest, metrics.horizontalAdvance(line));
  return widest;
}

void Paragraph::paintCentred(QPainter& painter, const QRectF& area, const QColor& colour,
                             Qt::Alignment alignment) const {
  paint(painter, area.translated(0.0, (area.height() - height()) / 2.0), colour, alignment);
}

void Paragraph::paint(QPainter& painter, const QRectF& area, const QColor& colour,
                      Qt::Alignment alignment) const {
  painter.setFont(role_.font);
  painter.setPen(colour);
  double top = area.top();
  for (const QString& line : lines_) {
    painter.drawText(QRectF(area.left(), top, area.width(), role_.leading),
                     static_cast<int>(alignment | Qt::AlignVCenter) | Qt::TextDontClip | Qt::TextSingleLine,
                     line);
    top += role_.leading;
  }
}

double textWidth(const QString& text, const TextRole& role) {
  return QFontMetricsF(role.font).horizontalAdvance(painted(text));
}

void paintLines(QPainter& painter, const QString& text, const TextRole& role, const QRectF& area,
                const QColor& colour, Qt::Alignment alignment) {
  Paragraph(text, role, area.width()).paintCentred(painter, area, colour, alignment);
}

void paintLine(QPainter& painter, const QString& text, const TextRole& role, const QRectF& area,
               const QColor& colour, Qt::Alignment alignment) {
  painter.setFont(role.font);
  painter.setPen(colour);
  const QString line = QFontMetricsF(role.font).elidedText(painted(text), Qt::ElideRight, area.width() + 0.5);
  painter.drawText(
      area, static_cast<int>(alignment | Qt::AlignVCenter) | Qt::TextDontClip | Qt::TextSingleLine, line);
}

}  // namespace vorli::ui
