#include "ui/windows/LetterTile.h"

#include "ui/kit/Typeface.h"

#include <QTextBoundaryFinder>
#include <array>
#include <cstddef>
#include <cstdint>

namespace vorli::ui {
namespace {

constexpr auto hueCount = std::tuple_size_v<decltype(LetterTileColours::hues)>;
constexpr double tileCornerRadius = 11.0;
constexpr double letterPoints = 19.0;
constexpr double tileLineWidth = 0.75;

// Returns the first letter, which may be more than one code point.
QString firstLetter(const QString& name) {
  QTextBoundaryFinder letters(QTextBoundaryFinder::Grapheme, name);
  const auto end = letters.toNextBoundary();
  return end > 0 ? name.left(end).toUpper() : QString();
}

}  // namespace

// FNV-1a: Qt's own hash differs from run to run.
int letterTileHue(const QString& identifier) {
  std::uint32_t hash = 2166136261U;
  for (const char byte : identifier.toUtf8()) {
    hash ^= static_cast<unsigned char>(byte);
    hash *= 16777619U;
  }
  return static_cast<int>(hash % hueCount);
}

void paintLetterTile(QPainter& painter, const QRectF& tile, const QString& name, const QString& identifier,
                     Appearance appearance) {
  const auto& colours = WindowPalette::of(appearance).letterTile;
  const auto& hue = colours.hues.at(static_cast<std::size_t>(letterTileHue(identifier)));
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(QPen(colours.line, tileLineWidth));
  painter.setBrush(hue.ground);
  constexpr double half = tileLineWidth / 2.0;
  painter.drawRoundedRect(tile.adjusted(half, half, -half, -half), tileCornerRadius, tileCornerRadius);
  painter.setPen(hue.letter);
  painter.setFont(fraunces(letterPoints, QFont::Normal));
  painter.drawText(tile, Qt::AlignCenter, firstLetter(name));
  painter.restore();
}

}  // namespace vorli::ui
