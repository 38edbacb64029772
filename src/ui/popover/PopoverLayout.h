#pragma once

#include "ui/popover/PopoverPicture.h"
#include "ui/popover/TextStyle.h"

#include <QPointF>
#include <QRectF>
#include <QString>
#include <optional>
#include <vector>

namespace vorli::ui {

/// Measures that do not depend on the content, in points.
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
  static constexpr double focusWidth = 2.0;  // of the focus ring
  static constexpr QRectF gear{234.0, 8.0, 28.0, 28.0};
};

/// Vertical positions of the ring and of the words in a card of a given height.
struct PopoverGrid {
  double ringCentreY, headlineTop;

  /// Content under the sentence, besides a banner or a link.
  enum class Under { nothing, culprits };

  /// `height` is the height that the content needs: 240, 264 or 304. In the tallest card, the ring lies
  /// higher when the sentence has an aside, its second part. A ring over culprits leaves room for the
  /// question that may take their place, and lies in the middle of what remains; it does not depend on their
  /// number.
  static PopoverGrid of(double height, const QString& sentence, Under under);
};

/// Text and the start of its baseline.
struct PlacedText {
  QString text;
  QPointF origin;
};

/// A name in the culprit sentence, cut if it is wider than the column. The box is as high as a line and as
/// wide as the cut text.
struct PlacedName {
  QString text;
  QRectF box;
  double baseline = 0.0;

  QRectF plate() const { return box.adjusted(-5.0, -2.0, 5.0, 2.0); }
};

struct PlacedCulprits {
  std::vector<PlacedText> texts;
  std::vector<PlacedName> names;
  double top = 0.0, bottom = 0.0;  // edges of the whole sentence
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

/// Places of all words and controls under the ring.
struct PopoverLayout {
  std::vector<PlacedText> headline, aside;
  std::optional<PlacedCulprits> culprits;
  std::optional<PlacedQuit> quit;
  std::optional<PlacedLabel> banner;
  std::optional<PlacedLabel> link;
  QRectF linkSymbol;
  double bottom = 0.0;  // of the last element

  /// `pixelRatio` is used to align the left ends of lines to device pixels.
  static PopoverLayout of(const WordsPicture& words, double pixelRatio);
};

}  // namespace vorli::ui
