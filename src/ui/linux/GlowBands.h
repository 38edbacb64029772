#pragma once

#include "ui/GlowBandPainter.h"

#include <QColor>
#include <QRect>
#include <array>
#include <memory>

namespace vorli::ui {

/// The four windows of a glow: unmanaged, so that they lie above full-screen windows and on every workspace,
/// and without an input region, so that every click goes through them. Drawn once for a colour; their
/// opacity is the compositor's work. Needs a compositor.
class GlowBands {
 public:
  /// `depth` and `screen` in Qt's logical pixels.
  GlowBands(const QRect& screen, int depth);
  ~GlowBands();

  void setScreen(const QRect& screen);
  /// Paints again only for another colour; sends only another level.
  void show(const QColor& colour, int level);
  /// Above what came up since, except for one window of the program's own.
  void raise(std::uint32_t windowAbove);

 private:
  class Band;

  int depth_;
  int level_ = -1;
  std::array<std::unique_ptr<Band>, 4> bands_;
};

}  // namespace vorli::ui
