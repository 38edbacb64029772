#include "ui/kit/Symbol.h"

#include "ui/kit/QtText.h"
#include "ui/kit/SymbolPaths.h"

#include <QPainter>
#include <QStringList>
#include <map>
#include <string>

namespace vorli::ui {
namespace {

constexpr double symbolGrid = 24.0;

QPainterPath readPath(const QStringList& words) {
  QPainterPath path;
  qsizetype at = 0;
  const auto point = [&words, &at] {
    const QPointF read(words.value(at).toDouble(), words.value(at + 1).toDouble());
    at += 2;
    return read;
  };
  while (at < words.size()) {
    const QString& command = words[at++];
    if (command == QLatin1String("M")) {
      path.moveTo(point());
    } else if (command == QLatin1String("L")) {
      path.lineTo(point());
    } else if (command == QLatin1String("C")) {
      const QPointF first = point();
      const QPointF second = point();
      path.cubicTo(first, second, point());
    } else {
      path.closeSubpath();
    }
  }
  return path;
}

// Splits at spaces, and after the letter of a command.
QStringList wordsOf(const QString& text) {
  QString spaced;
  for (const QChar character : text) {
    spaced += character;
    if (character.isUpper()) spaced += u' ';
  }
  return spaced.split(u' ', Qt::SkipEmptyParts);
}

Symbol::Part readPart(const QString& text) {
  QStringList words = wordsOf(text);
  const bool strokes = words.takeFirst() == QLatin1String("stroke");
  const QString detail = words.takeFirst();
  Symbol::Part part{readPath(words), strokes ? detail.toDouble() : 0.0};
  part.path.setFillRule(detail == QLatin1String("evenodd") ? Qt::OddEvenFill : Qt::WindingFill);
  return part;
}

// Returns the lines that draw the symbol, one for each path; empty for an unknown name.
QStringList linesOf(std::string_view name) {
  const std::string opening = "\n" + std::string(name) + "\n";
  const auto found = symbolPaths.find(opening);
  if (name.empty() || found == std::string_view::npos) return {};
  QStringList lines;
  for (const QString& line : qtText(symbolPaths.substr(found + opening.size())).split(u'\n')) {
    if (!line.startsWith(u' ')) break;
    if (line.startsWith(QLatin1String("   ")))
      lines.back() += line;
    else
      lines.push_back(line);
  }
  return lines;
}

}  // namespace

const Symbol* Symbol::named(std::string_view name) {
  static std::map<std::string, Symbol, std::less<>> read;
  if (const auto known = read.find(name); known != read.end()) return &known->second;
  Symbol symbol;
  for (const QString& line : linesOf(name)) symbol.parts_.push_back(readPart(line.trimmed()));
  if (symbol.parts_.empty()) return nullptr;
  return &read.emplace(name, std::move(symbol)).first->second;
}

void Symbol::paint(QPainter& painter, const QRectF& place, const QColor& colour,
                   std::optional<double> strokeWidth) const {
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  painter.translate(place.topLeft());
  painter.scale(place.width() / symbolGrid, place.height() / symbolGrid);
  for (const auto& part : parts_) {
    if (part.strokeWidth > 0.0) {
      painter.strokePath(part.path, QPen(colour, strokeWidth.value_or(part.strokeWidth), Qt::SolidLine,
                                         Qt::RoundCap, Qt::RoundJoin));
    } else {
      painter.fillPath(part.path, colour);
    }
  }
  painter.restore();
}

void paintSymbol(QPainter& painter, std::string_view name, const QRectF& place, const QColor& colour,
                 std::optional<double> strokeWidth) {
  if (const auto* symbol = Symbol::named(name)) symbol->paint(painter, place, colour, strokeWidth);
}

}  // namespace vorli::ui
