#pragma once

#include "ui/glow/GlowBandPainter.h"

#include <QColor>
#include <QRect>
#include <array>
#include <memory>

namespace vorli::ui {

/// The four windows of a glow. They are unmanaged, so that they are above full-screen windows and on every
/// workspace, also among the native windows of a Wayland session: a surface of its layer shell, which not
/// every compositor has, would be no higher. They have no input region, so that clicks pass through. They
/// are drawn once per colour; the compositor applies their opacity. Where it does not, they are drawn for
/// each level. Needs a compositor.
class GlowBands {
 public:
  /// Level of opaque bands.
  static constexpr double fullLevel = 255.0;

  /// `depth` and `screen` are in Qt's logical pixels.
  GlowBands(const QRect& screen, int depth);
  ~GlowBands();

  void setScreen(const QRect& screen);
  /// Does nothing when neither has changed.
  void show(const QColor& colour, int level);
  /// Raises the bands above other windows, but below `windowAbove`, a window of the program (0: none).
  void raise(std::uint32_t windowAbove);

 private:
  class Band;

  int depth_;
  const bool paintsOpacity_;
  int level_ = -1;
  std::array<std::unique_ptr<Band>, 4> bands_;
};

}  // namespace vorli::ui
