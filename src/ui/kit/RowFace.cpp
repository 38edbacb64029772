#include "ui/kit/RowFace.h"

#include "ui/kit/Paragraph.h"

#include <algorithm>

namespace vorli::ui {
namespace {

constexpr double faceGap = 12.0, faceTileSide = 32.0, faceSymbolSide = 18.0, facePadding = 10.0;
constexpr double faceTextLeft = RowFace::left + faceTileSide + faceGap;

double textWidthFor(double width, double controlWidth) {
  return width - faceTextLeft - RowFace::right - (controlWidth > 0.0 ? controlWidth + faceGap : 0.0);
}

}  // namespace

double RowFace::heightFor(double width, double controlWidth) const {
  const double room = textWidthFor(width, controlWidth);
  const double texts = Paragraph(title, TextRole::rowTitle(), room).height() +
                       (text.isEmpty() ? 0.0 : Paragraph(text, TextRole::rowText(), room).height());
  return std::max(leastHeight, texts + 2.0 * facePadding);
}

QRectF RowFace::tileIn(const QRectF& row) {
  return {row.left() + left, row.center().y() - faceTileSide / 2.0, faceTileSide, faceTileSide};
}

void RowFace::paint(QPainter& painter, const QRectF& row, double controlWidth, const WindowPalette& palette,
                    int spinnerStep) const {
  const QRectF tile = tileIn(row);
  const auto sign = spinnerStep < 0 ? symbol : std::string_view();
  const double opacity = painter.opacity();
  painter.setOpacity(opacity * (1.0 - lit));
  if (lit < 1.0) paintIconTile(painter, tile, sign, faceSymbolSide, tone, palette);
  painter.setOpacity(opacity * lit);
  if (lit > 0.0) paintIconTile(painter, tile, sign, faceSymbolSide, Tone::lit, palette);
  painter.setOpacity(opacity);
  if (spinnerStep >= 0) {
    QRectF place(0.0, 0.0, 16.0, 16.0);
    place.moveCenter(tile.center());
    paintSpinner(painter, place, palette.ink2, spinnerStep);
  }
  const double room = textWidthFor(row.width(), controlWidth);
  const Paragraph heading(title, TextRole::rowTitle(), room);
  const double textsHeight =
      heading.height() + (text.isEmpty() ? 0.0 : Paragraph(text, TextRole::rowText(), room).height());
  const QRectF texts(row.left() + faceTextLeft, row.center().y() - textsHeight / 2.0, room, textsHeight);
  heading.paint(painter, texts, palette.ink);
  if (text.isEmpty()) return;
  Paragraph(text, TextRole::rowText(), room)
      .paint(painter, texts.adjusted(0.0, heading.height(), 0.0, 0.0), palette.ink2);
}

}  // namespace vorli::ui
