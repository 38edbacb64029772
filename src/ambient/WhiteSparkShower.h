#pragma once

#include <array>
#include <optional>
#include <span>

namespace vorli {

/// Twelve white sparks that fly out from the middle of the ring, each a little after the one before. A pure
/// function of time; lengths in points, y downwards.
struct WhiteSparkShower {
  struct Offset {
    double x = 0.0, y = 0.0;
  };
  /// One spark at one moment: its centre relative to the ring's, its scale and opacity.
  struct Spark {
    double x = 0.0, y = 0.0;
    double scale = 1.0;
    double opacity = 0.0;
  };
  static constexpr std::size_t sparkCount = 12;
  using Sparks = std::array<Spark, sparkCount>;

  static constexpr std::array<Offset, sparkCount> allDestinations{{
      {-58.0, -38.0},
      {62.0, -28.0},
      {38.0, 68.0},
      {-70.0, 22.0},
      {0.0, -68.0},
      {-28.0, 64.0},
      {72.0, 18.0},
      {-64.0, -22.0},
      {58.0, -48.0},
      {-42.0, 50.0},
      {22.0, 72.0},
      {-12.0, -74.0},
  }};
  static constexpr double shadowOpacity = 0.8;

  std::optional<double> startDate;  // the scheduler's time; nothing is shown without it
  std::span<const Offset, sparkCount> destinations = allDestinations;
  double sparkDuration = 1.8;
  double staggerDelay = 0.07;
  double sparkSize = 3.2;  // diameter at scale 1

  /// The sparks at a time of the scheduler; empty before they are lit.
  std::optional<Sparks> sparks(double time) const;
};

}  // namespace vorli
