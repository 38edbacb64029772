#pragma once

#include "base/Colour.h"
#include "ports/StatusItem.h"

namespace vorli {

/// The status item's dial: twelve ticks, filled up to `progress`, coloured by its state.
struct MenuBarTickDial {
  double progress = 0.0;
  bool isDark = false;
  double calmOverlay = 0.0;  // towards the calm colour, 0 to 1
  bool dimmed = false;       // all ticks empty and faint
  int tickCount = 12;
  double innerRadiusRatio = 0.6;
  double outerRadiusRatio = 0.94;
  double filledStrokeRatio = 0.2;
  double emptyStrokeRatio = 0.14;
  double minFilledAlpha = 0.7;
  double maxFilledAlpha = 1.0;

  /// Progress to show: the ring's, moved towards 0.2 by the calm after a polish.
  static double calmedProgress(double ringProgress, double calmIntensity);

  /// Draws the dial in a square of `sidePoints`, with `padding` points free on every side.
  ports::StatusPicture picture(double sidePoints, double padding) const;

 private:
  int filledTicks() const;
  Colour filledColour() const;
  double filledAlpha(int tick, int filled) const;
};

}  // namespace vorli
