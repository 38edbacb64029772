#include "ui/linux/IconPixmapCache.h"

#include "ui/status/StatusPicturePainter.h"

#include <algorithm>
#include <array>

namespace vorli::ui {
namespace {

// Sizes that panels show, single and doubled; a panel scales down the next larger one.
constexpr std::array sides{16, 22, 24, 32, 48};

IconPixmaps draw(const ports::StatusPicture& picture) {
  IconPixmaps pixmaps;
  pixmaps.reserve(sides.size());
  for (const int side : sides) pixmaps.push_back(IconPixmap::fromImage(statusPictureImage(picture, side)));
  return pixmaps;
}

}  // namespace

const IconPixmaps& IconPixmapCache::pixmapsOf(const ports::StatusPicture& picture) {
  const auto found = std::find_if(entries_.begin(), entries_.end(),
                                  [&picture](const Entry& entry) { return entry.picture == picture; });
  if (found != entries_.end()) {
    entries_.splice(entries_.begin(), entries_, found);
  } else {
    entries_.push_front({picture, draw(picture)});
    ++drawn_;
    if (entries_.size() > capacity) entries_.pop_back();
  }
  return entries_.front().pixmaps;
}

}  // namespace vorli::ui
