#pragma once

#include "ui/popover/PopoverPalette.h"

#include <QImage>
#include <QRectF>
#include <QSizeF>
#include <array>

class QPainter;

namespace vorli::ui {

/// Draws the card's frame: the soft shadow and the dark hairline around it, the bright hairline inside, and
/// the rounded corners of its content. Parts that every picture needs are cached for the last appearance and
/// size.
class CardPainter {
 public:
  /// Extent of the shadow beside the card, in points.
  static constexpr double sideReach = 24.0, topReach = 16.0, bottomReach = 34.0;

  /// The areas that the card does not cover: all around it, and at its corners.
  static std::array<QRectF, 8> openParts(const QRectF& card, double pixelRatio);

  /// Whether the card is tall enough for its shadow to be assembled from the cache. Otherwise, painting a
  /// part of the shadow costs as much as painting the whole.
  static bool isShadowKept(const QRectF& card);
  /// Paints the shadow around the card. The pixels of `part` must be clear; `card` lies on device pixels.
  void paintShadow(QPainter& painter, const QRectF& card, const QRectF& part, Appearance appearance,
                   double pixelRatio);
  /// Fills `area` with the colour of the hairline, in place of the shadow when there is no compositor. The
  /// window is then cut to the card's hairline, which is all that shows beyond the card.
  static void paintGround(QPainter& painter, const QRectF& area, Appearance appearance);
  /// Paints the card's content inside its rounded shape. `content` is an opaque image whose upper left corner
  /// is the card's.
  void paintContent(QPainter& painter, const QRectF& card, const QRectF& dirty, const QImage& content,
                    double pixelRatio);
  /// Paints the bright hairline on the card. Must come last.
  void paintInnerHairline(QPainter& painter, const QRectF& card, Appearance appearance, double pixelRatio);
  void forget();

  static double radiusOf(const QRectF& card);

 private:
  void paintLowShadow(QPainter& painter, const QRectF& card, const QRectF& part, Appearance appearance,
                      double pixelRatio);
  void drawSlices(const QSizeF& card, Appearance appearance, double pixelRatio);
  void drawEdge(const QSizeF& card, Appearance appearance, double pixelRatio);
  void drawMasks(const QSizeF& card, double pixelRatio);

  struct Kept {
    QImage image;
    QSizeF card;
    Appearance appearance = Appearance::light;
    double pixelRatio = 0.0;

    bool shows(const QSizeF& otherCard, Appearance otherAppearance, double otherRatio) const {
      return card == otherCard && appearance == otherAppearance && pixelRatio == otherRatio;
    }
  };
  Kept slices_, lowest_, edge_;

  // Coverage of each pixel by the card, corner by corner.
  struct Masks {
    std::array<QImage, 4> images;
    QSizeF card;
    double pixelRatio = 0.0;
  };
  Masks masks_;
};

}  // namespace vorli::ui
