#pragma once

#include "ui/popover/PopoverPalette.h"

#include <QImage>
#include <QRectF>
#include <QSizeF>
#include <array>

class QPainter;

namespace vorli::ui {

/// Draws the card's frame: the soft shadow and the dark hairline round it, the bright hairline inside, and
/// the rounded corners of what the card shows. What every picture needs is kept for the last appearance and
/// size.
class CardPainter {
 public:
  /// What the shadow takes beside the card, in points.
  static constexpr double sideReach = 24.0, topReach = 16.0, bottomReach = 34.0;

  /// Where the card does not hide what lies under it: all around it, and at its corners.
  static std::array<QRectF, 8> openParts(const QRectF& card, double pixelRatio);

  /// Whether the card is high enough for its shadow to be put together from what is kept; else each part of
  /// it costs as much as the whole.
  static bool isShadowKept(const QRectF& card);
  /// Round a card, on cleared pixels of `part`. `card` lies on device pixels.
  void paintShadow(QPainter& painter, const QRectF& card, const QRectF& part, Appearance appearance,
                   double pixelRatio);
  /// In place of the shadow without a compositor, where the window is cut to the card's hairline: what shows
  /// of it beyond the card is all hairline.
  static void paintGround(QPainter& painter, const QRectF& area, Appearance appearance);
  /// What the card shows, an opaque image from its upper left corner on, inside of its rounded shape.
  void paintContent(QPainter& painter, const QRectF& card, const QRectF& dirty, const QImage& content,
                    double pixelRatio);
  /// On the card, last of all.
  void paintInnerHairline(QPainter& painter, const QRectF& card, Appearance appearance, double pixelRatio);
  void forget();

  static double radiusOf(const QRectF& card);

 private:
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
  Kept slices_, edge_;

  // How much of each pixel belongs to the card, corner by corner.
  struct Masks {
    std::array<QImage, 4> images;
    QSizeF card;
    double pixelRatio = 0.0;
  };
  Masks masks_;
};

}  // namespace vorli::ui
