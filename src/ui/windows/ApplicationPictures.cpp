#include "ui/windows/ApplicationPictures.h"

#include <QBuffer>
#include <QByteArray>
#include <QImageReader>
#include <QPainter>
#include <algorithm>

namespace vorli::ui {
namespace {

constexpr int greatestIconSide = 1024;

}  // namespace

QImage pictureOfIcon(const std::string& bytes, int sidePixels) {
  QByteArray data = QByteArray::fromRawData(bytes.data(), static_cast<qsizetype>(bytes.size()));
  QBuffer buffer(&data);
  buffer.open(QIODevice::ReadOnly);
  QImageReader reader(&buffer, "png");
  reader.setAutoDetectImageFormat(false);
  const QSize size = reader.size();  // from the header of the file, before anything is decoded
  if (size.isEmpty() || std::max(size.width(), size.height()) > greatestIconSide) return {};
  const QImage read = reader.read();
  if (read.isNull()) return {};
  QImage scaled = read.convertToFormat(QImage::Format_ARGB32_Premultiplied)
                      .scaled(sidePixels, sidePixels, Qt::KeepAspectRatio, Qt::SmoothTransformation);
  if (scaled.isNull() || scaled.size() == QSize(sidePixels, sidePixels)) return scaled;
  QImage square(sidePixels, sidePixels, QImage::Format_ARGB32_Premultiplied);
  square.fill(Qt::transparent);
  QPainter(&square).drawImage((sidePixels - scaled.width()) / 2, (sidePixels - scaled.height()) / 2, scaled);
  return square;
}

ApplicationPictures::ApplicationPictures(ports::ApplicationIcons& icons,
                                         std::unique_ptr<ports::BackgroundWork> work)
    : icons_(icons), work_(std::move(work)) {}

ApplicationPictures::~ApplicationPictures() {
  work_->abandon();
}

const ApplicationPictures::Picture& ApplicationPictures::of(const std::string& application, int sidePixels) {
  const Key key(application, sidePixels);
  Entry& entry = entries_[key];
  entry.usedAt = ++uses_;
  if (entry.picture.state == State::known) return entry.picture;
  if (entry.isNew) {
    entry.isNew = false;
    waiting_.push_back(key);
  } else if (const auto queued = std::ranges::find(waiting_, key); queued != waiting_.end()) {
    std::rotate(queued, queued + 1, waiting_.end());
  }
  if (!work_->isUnderWay()) startNext();
  return entry.picture;
}

void ApplicationPictures::startNext() {
  if (waiting_.empty()) return;
  const Key key = std::move(waiting_.back());
  waiting_.pop_back();
  const auto drawn = std::make_shared<QImage>();
  work_->start(
      [&icons = icons_, key, drawn] {
        if (const auto bytes = icons.image(key.first, key.second)) *drawn = pictureOfIcon(*bytes, key.second);
      },
      [this, key, drawn] { arrived(key, *drawn); });
}

void ApplicationPictures::arrived(const Key& key, QImage image) {
  const auto entry = entries_.find(key);
  if (entry != entries_.end()) entry->second.picture = {State::known, std::move(image)};
  dropUnused();
  startNext();
  changed_.deliver(key.first);
}

// Drops the pictures that were used the longest time ago: their rows have scrolled out of sight.
void ApplicationPictures::dropUnused() {
  while (entries_.size() > mostKept) {
    const auto oldest =
        std::ranges::min_element(entries_, {}, [](const auto& each) { return each.second.usedAt; });
    std::erase(waiting_, oldest->first);
    entries_.erase(oldest);
  }
}

}  // namespace vorli::ui
