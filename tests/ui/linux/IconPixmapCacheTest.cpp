#include "ambient/MenuBarTickDial.h"
#include "ui/linux/IconPixmapCache.h"

#include <QImage>
#include <gtest/gtest.h>

namespace vorli::ui {
namespace {

ports::StatusPicture dial(double progress) {
  return MenuBarTickDial{.progress = progress}.picture(18.0, 1.0);
}

TEST(IconPixmapTest, bytesAreStraightArgbMostSignificantFirst) {
  QImage image(2, 1, QImage::Format_ARGB32_Premultiplied);
  image.setPixel(0, 0, qRgba(0x40, 0x20, 0x10, 0x80));  // half of 0x7f, 0x40, 0x20
  image.setPixel(1, 0, qRgba(1, 2, 3, 255));
  const auto pixmap = IconPixmap::fromImage(image);
  EXPECT_EQ(pixmap.width, 2);
  EXPECT_EQ(pixmap.height, 1);
  EXPECT_EQ(pixmap.bytes, QByteArray::fromHex("807f4020ff010203"));
}

TEST(IconPixmapCacheTest, hasEverySizeThatPanelsShow) {
  IconPixmapCache cache;
  QList<int> sides;
  for (const auto& pixmap : cache.pixmapsOf(dial(0.6))) {
    EXPECT_EQ(pixmap.width, pixmap.height);
    EXPECT_EQ(pixmap.bytes.size(), 4 * pixmap.width * pixmap.height);
    sides.push_back(pixmap.width);
  }
  EXPECT_EQ(sides, (QList<int>{16, 22, 24, 32, 48}));
}

TEST(IconPixmapCacheTest, aPictureThatComesBackIsNotDrawnAgain) {
  IconPixmapCache cache;
  const auto first = cache.pixmapsOf(dial(0.6));
  cache.pixmapsOf(dial(0.9));
  EXPECT_EQ(cache.pixmapsOf(dial(0.6)).front().bytes, first.front().bytes);
  EXPECT_EQ(cache.drawn(), 2u);
}

TEST(IconPixmapCacheTest, keepsNoMoreThanItsCapacityAndForgetsTheOneUnusedLongest) {
  IconPixmapCache cache;
  const auto picture = [](std::size_t i) {
    return MenuBarTickDial{}.picture(18.0 + static_cast<double>(i), 1.0);
  };
  for (std::size_t i = 0; i < IconPixmapCache::capacity; ++i) cache.pixmapsOf(picture(i));
  cache.pixmapsOf(picture(0));
  cache.pixmapsOf(picture(100));
  EXPECT_EQ(cache.size(), IconPixmapCache::capacity);
  const auto drawn = cache.drawn();
  cache.pixmapsOf(picture(0));
  EXPECT_EQ(cache.drawn(), drawn);
  cache.pixmapsOf(picture(1));
  EXPECT_EQ(cache.drawn(), drawn + 1);
}

}  // namespace
}  // namespace vorli::ui
