#pragma once

#include "ports/StatusItem.h"
#include "ui/linux/StatusNotifierTypes.h"

#include <list>

namespace vorli::ui {

/// Caches the pixmaps of the `capacity` pictures shown last, so that one that returns is not drawn again.
class IconPixmapCache {
 public:
  static constexpr std::size_t capacity = 16;  // 19 kB per entry

  const IconPixmaps& pixmapsOf(const ports::StatusPicture& picture);

  /// Number of pictures drawn so far.
  std::size_t drawn() const { return drawn_; }
  std::size_t size() const { return entries_.size(); }

 private:
  struct Entry {
    ports::StatusPicture picture;
    IconPixmaps pixmaps;
  };

  std::list<Entry> entries_;  // most recently used first
  std::size_t drawn_ = 0;
};

}  // namespace vorli::ui
