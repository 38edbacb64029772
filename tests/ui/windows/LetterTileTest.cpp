#include "ui/windows/LetterTile.h"

#include <QImage>
#include <gtest/gtest.h>
#include <set>

namespace vorli::ui {
namespace {

QImage tile(const QString& name, const QString& identifier, Appearance appearance = Appearance::light) {
  QImage image(40, 40, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  QPainter painter(&image);
  paintLetterTile(painter, {0, 0, 40, 40}, name, identifier, appearance);
  return image;
}

TEST(LetterTileTest, anIdentifierKeepsItsHueFromRunToRun) {
  EXPECT_EQ(letterTileHue(""), static_cast<int>(2166136261U % 6));
  EXPECT_EQ(letterTileHue("com.acme.agent"), letterTileHue("com.acme.agent"));
  std::set<int> hues;
  for (int i = 0; i < 100; ++i) hues.insert(letterTileHue(QString::number(i)));
  EXPECT_EQ(hues, (std::set<int>{0, 1, 2, 3, 4, 5}));
}

TEST(LetterTileTest, showsTheFirstLetterInEitherCase) {
  EXPECT_EQ(tile("acme", "x"), tile("Acme", "x"));
  EXPECT_NE(tile("acme", "x"), tile("bcme", "x"));
}

TEST(LetterTileTest, aNameWithoutLettersIsAPlainTile) {
  EXPECT_EQ(qAlpha(tile("", "x").pixel(20, 20)), 255);
  EXPECT_NE(tile("", "x"), tile("A", "x"));
}

TEST(LetterTileTest, darkTilesAreDark) {
  EXPECT_LT(tile("", "x", Appearance::dark).pixelColor(20, 5).lightness(),
            tile("", "x").pixelColor(20, 5).lightness());
}

}  // namespace
}  // namespace vorli::ui
