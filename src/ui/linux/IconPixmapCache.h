#pragma once

#include "ports/StatusItem.h"
#include "ui/linux/StatusNotifierTypes.h"

#include <list>

namespace vorli::ui {

/// The pixmaps of the pictures shown last: each is drawn once and used again when it comes back, and no more
/// than `capacity` are kept.
class IconPixmapCache {
 public:
  static constexpr std::size_t capacity = 16;  // 19 kB each

  const IconPixmaps& pixmapsOf(const ports::StatusPicture& picture);

  /// How many pictures were drawn so far.
  std::size_t drawn() const { return drawn_; }
  std::size_t size() const { return entries_.size(); }

 private:
  struct Entry {
    ports::StatusPicture picture;
    IconPixmaps pixmaps;
  };

  std::list<Entry> entries_;  // the one used last comes first
  std::size_t drawn_ = 0;
};

}  // namespace vorli::ui
