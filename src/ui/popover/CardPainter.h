#pragma once

#include "ui/popover/PopoverPalette.h"

#include <QImage>
#include <QRectF>

class QPainter;

namespace vorli::ui {

/// Draws the card's frame: the soft shadow and the dark hairline round it, and the bright hairline inside.
/// What the frame needs in every picture is kept for the last appearance and height.
class CardPainter {
 public:
  /// What the shadow takes beside the card, in points.
  static constexpr double sideReach = 24.0, topReach = 16.0, bottomReach = 34.0;

  /// Round a card, on cleared pixels. `card` lies on device pixels.
  void paintShadow(QPainter& painter, const QRectF& card, Appearance appearance, double pixelRatio);
  /// In place of the shadow without a compositor, where the window is cut to the card's hairline: what shows
  /// of it beyond the card is all hairline.
  static void paintGround(QPainter& painter, const QRectF& area, Appearance appearance);
  /// On the card, last of all.
  void paintInnerHairline(QPainter& painter, const QRectF& card, Appearance appearance, double pixelRatio);
  void forget();

  static double radiusOf(const QRectF& card);

 private:
  void drawSlices(Appearance appearance, double pixelRatio);
  void drawEdge(const QSizeF& size, Appearance appearance, double pixelRatio);

  struct Kept {
    QImage image;
    Appearance appearance = Appearance::light;
    double pixelRatio = 0.0;
    QSizeF size;
  };
  Kept slices_, edge_;
};

}  // namespace vorli::ui
