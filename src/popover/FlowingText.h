#pragma once

#include <span>
#include <vector>

namespace vorli {

/// Places items one after the other in lines, like words of a text. All lengths in points, y downwards.
struct FlowingText {
  double spacing = 0.0;
  double lineSpacing = 2.0;

  struct Size {
    double width = 0.0, height = 0.0;
    bool operator==(const Size&) const = default;
  };
  struct Position {
    double x = 0.0, y = 0.0;
    bool operator==(const Position&) const = default;
  };
  struct Arrangement {
    std::vector<Position> positions;  // top left corner of each item
    Size size;                        // total; its width can exceed the proposed one
  };

  /// An item that would exceed `proposedWidth` begins a new line, unless it is already the first of its line.
  Arrangement arrange(std::span<const Size> items, double proposedWidth) const;
};

}  // namespace vorli
