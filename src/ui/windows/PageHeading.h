#pragma once

#include "ui/kit/Paragraph.h"
#include "ui/kit/WindowPalette.h"

#include <QPainter>
#include <QPointF>
#include <QRectF>
#include <QString>

namespace vorli::ui {

/// The title of a page and the sentence below it, each in as many lines as it needs.
class PageHeading {
 public:
  PageHeading(const QString& title, const QString& subtitle, double width)
      : width_(width),
        title_(title, TextRole::pageTitle(), width),
        subtitle_(subtitle, TextRole::pageSubtitle(), width) {}

  /// Height beyond that of a title and a sentence in one line each.
  double addedHeight() const { return title_.heightOfFurtherLines() + subtitle_.heightOfFurtherLines(); }

  void paint(QPainter& painter, const QPointF& corner, const WindowPalette& palette) const {
    const QRectF title(corner, QSizeF(width_, 36.0 + title_.heightOfFurtherLines()));
    const QRectF subtitle(corner.x(), title.bottom() + 4.0, width_, 20.0 + subtitle_.heightOfFurtherLines());
    title_.paintCentred(painter, title, palette.ink);
    subtitle_.paintCentred(painter, subtitle, palette.ink2);
  }

 private:
  double width_;
  Paragraph title_;
  Paragraph subtitle_;
};

}  // namespace vorli::ui
