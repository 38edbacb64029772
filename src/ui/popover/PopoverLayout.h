#pragma once

#include "ui/popover/PopoverPicture.h"
#include "ui/popover/TextStyle.h"

#include <QPointF>
#include <QRectF>
#include <QString>
#include <optional>
#include <vector>

namespace vorli::ui {

/// The measures that do not depend on the content. Points.
struct PopoverMetrics {
  static constexpr double width = 270.0;
  static constexpr double tallest = 304.0;
  static constexpr double cornerRadius = 18.0;
  static constexpr double centreX = width / 2.0;
  static constexpr double columnWidth = 230.0;
  static constexpr double ringRadius = 52.0;
  static constexpr double ringWidth = 6.0;
  static constexpr double ringHitRadius = 56.0;
  static constexpr double lensRadius = 42.0;
  static constexpr double focusWidth = 2.0;  // of the ring round what has the focus
  static constexpr QRectF gear{234.0, 8.0, 28.0, 28.0};
};

/// Where the ring and the words begin in a card of a given height.
struct PopoverGrid {
  double ringCentreY, headlineTop;

  /// `height` as the content asks for it: 240, 264 or 304; an aside is the second part of the sentence.
  static PopoverGrid of(double height, const QString& sentence);
};

/// Text on its base line.
struct PlacedText {
  QString text;
  QPointF origin;
};

/// A name of the culprit sentence, cut if it is wider than the column; the box is as high as a line and as
/// wide as what is left of it.
struct PlacedName {
  QString text;
  QRectF box;
  double baseline = 0.0;

  QRectF plate() const { return box.adjusted(-5.0, -2.0, 5.0, 2.0); }
};

struct PlacedCulprits {
  std::vector<PlacedText> texts;
  std::vector<PlacedName> names;
};

struct PlacedQuit {
  PlacedText question;
  QRectF cancel, quit;
  PlacedText cancelText, quitText;
};

struct PlacedLabel {
  QRectF capsule;
  PlacedText text;
};

/// The place of every word and control under the ring.
struct PopoverLayout {
  std::vector<PlacedText> headline, aside;
  std::optional<PlacedCulprits> culprits;
  std::optional<PlacedQuit> quit;
  std::optional<PlacedLabel> banner;
  std::optional<PlacedLabel> link;
  QRectF linkSymbol;
  double bottom = 0.0;  // of the last element

  /// `pixelRatio` puts the left ends of lines on device pixels.
  static PopoverLayout of(const WordsPicture& words, double pixelRatio);
};

}  // namespace vorli::ui
