#include "popover/FlowingText.h"

#include <algorithm>

namespace vorli {

FlowingText::Arrangement FlowingText::arrange(std::span<const Size> items, double proposedWidth) const {
  Arrangement arrangement;
  Position next;
  double lineHeight = 0.0;
  bool isFirstOfLine = true;
  for (const Size& item : items) {
    if (!isFirstOfLine && next.x + item.width > proposedWidth) {
      next = {0.0, next.y + lineHeight + lineSpacing};
      lineHeight = 0.0;
    }
    arrangement.positions.push_back(next);
    isFirstOfLine = false;
    lineHeight = std::max(lineHeight, item.height);
    arrangement.size.width = std::max(arrangement.size.width, next.x + item.width);
    arrangement.size.height = next.y + lineHeight;
    next.x += item.width + spacing;
  }
  return arrangement;
}

}  // namespace vorli
