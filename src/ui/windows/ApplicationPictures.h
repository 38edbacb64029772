#pragma once

#include "base/SubscriberList.h"
#include "ports/ApplicationIcons.h"
#include "ports/BackgroundWork.h"

#include <QImage>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace vorli::ui {

/// The icons of applications, drawn to size on a second thread and kept while they are in use. The last
/// request is served first, because the user is looking at it. Main thread.
class ApplicationPictures {
 public:
  ApplicationPictures(ports::ApplicationIcons& icons, std::unique_ptr<ports::BackgroundWork> work);
  ~ApplicationPictures();
  ApplicationPictures(const ApplicationPictures&) = delete;
  ApplicationPictures& operator=(const ApplicationPictures&) = delete;

  enum class State { underWay, known };
  struct Picture {
    State state = State::underWay;
    QImage image;  // a square of the requested size; null when the application has no icon
  };
  /// The icon of the application at a path, `sidePixels` wide and high. Does not block: an unknown icon is
  /// requested.
  const Picture& of(const std::string& application, int sidePixels);

  /// Calls `handler` with an application's path when its picture has become known.
  Subscription subscribe(std::function<void(const std::string&)> handler) {
    return changed_.add(std::move(handler));
  }

  static constexpr std::size_t mostKept = 256;

 private:
  using Key = std::pair<std::string, int>;
  struct Entry {
    Picture picture;
    bool isNew = true;  // not requested yet
    std::uint64_t usedAt = 0;
  };

  void startNext();
  void arrived(const Key& key, QImage image);
  void dropUnused();

  ports::ApplicationIcons& icons_;
  std::unique_ptr<ports::BackgroundWork> work_;
  std::map<Key, Entry> entries_;
  std::vector<Key> waiting_;  // the next one is the last
  std::uint64_t uses_ = 0;
  SubscriberList<std::string> changed_;
};

/// Draws the picture of a PNG file into a transparent square, keeping its proportions. Null for damaged
/// bytes, for other formats, and for pictures larger than any icon. Thread-safe.
QImage pictureOfIcon(const std::string& bytes, int sidePixels);

}  // namespace vorli::ui
