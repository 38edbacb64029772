#include "ui/kit/Plates.h"

#include "ui/kit/Paragraph.h"
#include "ui/kit/Symbol.h"

#include <QPainterPath>
#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <iterator>
#include <utility>
#include <vector>

namespace vorli::ui {
namespace {

constexpr double lipWidth = 1.5;
constexpr double capHeight = 28.0;

QPainterPath rounded(const QRectF& shape, double radius) {
  QPainterPath path;
  path.addRoundedRect(shape, radius, radius);
  return path;
}

struct RoundedShape {
  QRectF place;
  double radius;
  bool operator==(const RoundedShape&) const = default;
};

// The part of `shape` that `cut` does not cover. Qt would compute it again at each painting, at twice the
// cost of filling it; a window is made of plates of few sizes, so the last ones are kept.
QPainterPath outside(RoundedShape shape, RoundedShape cut) {
  struct Kept {
    RoundedShape shape, cut;
    QPainterPath path;
  };
  constexpr std::size_t mostKept = 64;
  static std::vector<Kept> kept;

  const QPointF origin = shape.place.topLeft();
  shape.place.translate(-origin);
  cut.place.translate(-origin);
  auto found =
      std::ranges::find_if(kept, [&](const Kept& each) { return each.shape == shape && each.cut == cut; });
  if (found == kept.end()) {
    if (kept.size() == mostKept) kept.clear();
    kept.push_back(
        {shape, cut, rounded(shape.place, shape.radius).subtracted(rounded(cut.place, cut.radius))});
    found = std::prev(kept.end());
  }
  return found->path.translated(origin);
}

// Returns the symbol of a key whose sign the typefaces lack; empty for a key with a text.
std::string_view keySymbol(const QString& key) {
  static constexpr std::array<std::pair<const char16_t*, std::string_view>, 16> symbols{{
      {u"⌥", "key.option"},
      {u"⇧", "key.shift"},
      {u"⌘", "key.command"},
      {u"⌃", "key.control"},
      {u"↩", "key.return"},
      {u"⇥", "key.tab"},
      {u"⌫", "key.delete"},
      {u"⌦", "key.forwardDelete"},
      {u"↖", "key.home"},
      {u"↘", "key.end"},
      {u"⇞", "key.pageUp"},
      {u"⇟", "key.pageDown"},
      {u"←", "key.left"},
      {u"→", "key.right"},
      {u"↑", "key.up"},
      {u"↓", "key.down"},
  }};
  for (const auto& [sign, symbol] : symbols) {
    if (key == QStringView(sign)) return symbol;
  }
  return {};
}

}  // namespace

void paintPlate(QPainter& painter, const QRectF& shape, double radius, const QBrush& fill, const QColor& line,
                const QColor& lip) {
  painter.setPen(Qt::NoPen);
  painter.setBrush(fill);
  painter.drawRoundedRect(shape, radius, radius);
  if (lip.alpha() > 0) {  // the shape minus a lowered copy of it
    painter.fillPath(outside({shape, radius}, {shape.translated(0.0, lipWidth), radius}), lip);
  }
  if (line.alpha() == 0) return;
  painter.setBrush(Qt::NoBrush);
  painter.setPen(QPen(line, 1.0));
  painter.drawRoundedRect(shape.adjusted(0.5, 0.5, -0.5, -0.5), radius - 0.5, radius - 0.5);
}

// Two layers stand in for a blur of two points, and the shape is cut out: plates may be translucent.
void paintSmallShadow(QPainter& painter, const QRectF& shape, double radius, const QColor& colour) {
  if (colour.alpha() == 0) return;
  QColor half = colour;
  half.setAlphaF(colour.alphaF() / 2.0F);
  const RoundedShape cut{shape, radius};
  painter.fillPath(outside({shape.adjusted(-0.5, 0.5, 0.5, 2.0), radius + 0.5}, cut), half);
  painter.fillPath(outside({shape.translated(0.0, 1.0), radius}, cut), half);
}

void paintInnerShadow(QPainter& painter, const QRectF& shape, double radius, const InnerShadow& shadow) {
  for (const double depth : shadow.depths) {
    painter.fillPath(outside({shape, radius}, {shape.translated(0.0, depth), radius}),
                     QColor(0, 0, 0, shadow.alpha));
  }
}

void paintCard(QPainter& painter, const QRectF& shape, const WindowPalette& palette) {
  paintSmallShadow(painter, shape, cardRadius, palette.cardShadow);
  paintPlate(painter, shape, cardRadius, palette.card.over(shape), palette.border, palette.lip);
}

void paintIconTile(QPainter& painter, const QRectF& tile, std::string_view symbol, double symbolSide,
                   Tone tone, const WindowPalette& palette) {
  struct Look {
    QColor plate, line, ink;
  };
  const Look look = tone == Tone::lit     ? Look{palette.calmWash, palette.calmLine, palette.accent}
                    : tone == Tone::amber ? Look{palette.amberWash, palette.border, palette.amberInk}
                    : tone == Tone::red   ? Look{palette.redWash, palette.border, palette.redInk}
                                          : Look{palette.wash, palette.border, palette.ink2};
  const double radius = tile.width() >= 64.0   ? 20.0
                        : tile.width() >= 44.0 ? 14.0
                        : tile.width() >= 36.0 ? 10.0
                                               : 9.0;
  painter.setPen(Qt::NoPen);
  painter.setBrush(look.plate);
  painter.drawRoundedRect(tile, radius, radius);
  painter.setBrush(Qt::NoBrush);
  painter.setPen(QPen(look.line, 0.5));
  painter.drawRoundedRect(tile.adjusted(0.25, 0.25, -0.25, -0.25), radius, radius);
  QRectF place(0.0, 0.0, symbolSide, symbolSide);
  place.moveCenter(tile.center());
  paintSymbol(painter, symbol, place, look.ink);
}

double badgeWidth(const QString& text) {
  return textWidth(text, TextRole::badge()) + 11.0;
}

QColor badgeInk(Tone tone, const WindowPalette& palette) {
  return tone == Tone::red ? palette.redInk : tone == Tone::plain ? palette.meta : palette.accentInk;
}

void paintBadge(QPainter& painter, const QPointF& corner, const QString& text, Tone tone, const QColor& ink,
                const WindowPalette& palette) {
  constexpr double height = 16.0, radius = 5.0, leftPadding = 6.0;
  const QRectF shape(corner, QSizeF(badgeWidth(text), height));
  if (tone == Tone::plain)
    paintPlate(painter, shape, radius, Qt::NoBrush, palette.fieldLine);
  else
    paintPlate(painter, shape, radius, tone == Tone::red ? palette.redWash : palette.calmWash,
               Qt::transparent);
  paintLine(painter, text, TextRole::badge(), shape.adjusted(leftPadding, 0.0, 0.0, 0.0), ink);
}

void paintSpinner(QPainter& painter, const QRectF& place, const QColor& colour, int step) {
  constexpr int bars = 12;
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  painter.translate(place.center());
  painter.scale(place.width() / 24.0, place.height() / 24.0);
  painter.setPen(Qt::NoPen);
  painter.setBrush(colour);
  for (int bar = 0; bar < bars; ++bar) {
    const int age = ((bar - step) % bars + bars) % bars;
    painter.setOpacity(0.18 + 0.82 * age / (bars - 1.0));
    painter.drawRoundedRect(QRectF(-1.0, -10.5, 2.0, 5.4), 1.0, 1.0);
    painter.rotate(360.0 / bars);
  }
  painter.restore();
}

void paintCountdownRing(QPainter& painter, const QRectF& place, double share, const WindowPalette& palette) {
  constexpr double radius = 6.75, stroke = 2.5;
  const QPointF centre = place.center();
  const QRectF circle(centre.x() - radius, centre.y() - radius, 2.0 * radius, 2.0 * radius);
  painter.setBrush(Qt::NoBrush);
  painter.setPen(QPen(palette.calmLine, stroke));
  painter.drawEllipse(circle);
  if (share <= 0.0) return;
  constexpr int top = 90 * 16, full = 360 * 16;
  painter.setPen(QPen(palette.accent, stroke, Qt::SolidLine, Qt::RoundCap));
  painter.drawArc(circle, top, -qRound(full * std::min(share, 1.0)));
}

double keyCapWidth(const QString& key) {
  if (!keySymbol(key).empty()) return capHeight;
  return std::max(capHeight, std::ceil(textWidth(key, TextRole::button())) + 16.0);
}

void paintKeyCap(QPainter& painter, const QRectF& cap, const QString& key, const WindowPalette& palette) {
  constexpr double radius = 8.0, symbolSide = 14.0;
  painter.fillPath(outside({cap.translated(0.0, 1.5), radius}, {cap, radius}), palette.pillLine);
  paintPlate(painter, cap, radius, palette.pill.over(cap), palette.pillLine, palette.lip);
  if (const auto symbol = keySymbol(key); !symbol.empty()) {
    QRectF place(0.0, 0.0, symbolSide, symbolSide);
    place.moveCenter(cap.center());
    paintSymbol(painter, symbol, place, palette.ink);
  } else {
    paintLine(painter, key, TextRole::button(), cap, palette.ink, Qt::AlignHCenter);
  }
}

void paintGhostCap(QPainter& painter, const QRectF& cap, const WindowPalette& palette) {
  QPen dashed(palette.offLine, 1.0);
  dashed.setDashPattern({3.0, 2.5});
  painter.save();
  painter.setOpacity(painter.opacity() * 0.8);
  painter.setBrush(Qt::NoBrush);
  painter.setPen(dashed);
  painter.drawRoundedRect(cap.adjusted(0.5, 0.5, -0.5, -0.5), 7.5, 7.5);
  painter.restore();
}

}  // namespace vorli::ui
