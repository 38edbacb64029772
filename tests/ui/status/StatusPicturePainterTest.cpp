#include "ambient/MenuBarTickDial.h"
#include "ui/status/StatusPicturePainter.h"

#include <QImage>
#include <QPainter>
#include <QString>
#include <array>
#include <cmath>
#include <cstdlib>
#include <gtest/gtest.h>
#include <numbers>

namespace vorli::ui {
namespace {

constexpr std::array sides{16, 18, 22, 24, 32, 48};

ports::StatusPicture dialPicture(const MenuBarTickDial& dial) {
  return dial.picture(18.0, 1.0);
}

int dialAlphaAt(const QImage& image, double x, double y) {
  return qAlpha(image.pixel(static_cast<int>(x), static_cast<int>(y)));
}

// The states of the dial in the order of a contact sheet.
std::vector<MenuBarTickDial> states(bool isDark) {
  const auto at = [isDark](double progress, double calm) {
    return MenuBarTickDial{.progress = progress, .isDark = isDark, .calmOverlay = calm};
  };
  const double calmed = MenuBarTickDial::calmedProgress(0.9, 1.0);
  const double halfCalmed = MenuBarTickDial::calmedProgress(0.9, 0.5);
  std::vector all{at(0.0, 0.0), at(0.3, 0.0),    at(0.6, 0.0),        at(0.9, 0.0),
                  at(1.0, 0.0), at(calmed, 1.0), at(halfCalmed, 0.5), at(0.9, 0.0)};
  all.back().dimmed = true;
  return all;
}

QImage contactSheet() {
  constexpr int cell = 64;
  const int columns = static_cast<int>(states(false).size());
  QImage sheet(2 * columns * cell, static_cast<int>(sides.size()) * cell, QImage::Format_RGB32);
  QPainter painter(&sheet);
  for (const bool isDark : {false, true}) {
    const int left = isDark ? columns * cell : 0;
    painter.fillRect(left, 0, columns * cell, sheet.height(),
                     isDark ? QColor(0x20, 0x22, 0x25) : QColor(0xf4, 0xf3, 0xf1));
    for (std::size_t row = 0; row < sides.size(); ++row) {
      const auto all = states(isDark);
      for (int column = 0; column < columns; ++column) {
        const QImage image =
            statusPictureImage(dialPicture(all[static_cast<std::size_t>(column)]), sides[row]);
        const int inset = (cell - sides[row]) / 2;
        painter.drawImage(left + column * cell + inset, static_cast<int>(row) * cell + inset, image);
      }
    }
  }
  return sheet;
}

TEST(StatusPicturePainterTest, drawsExactlyAtTheAskedSize) {
  for (const int side : sides) {
    EXPECT_EQ(statusPictureImage(dialPicture({.progress = 0.6}), side).size(), QSize(side, side));
  }
}

TEST(StatusPicturePainterTest, theFourTicksOfTheAxesAreSymmetricAtEverySize) {
  for (const int side : sides) {
    const QImage image = statusPictureImage(dialPicture({.progress = 0.0}), side);
    const QImage quarter = image.transformed(QTransform().rotate(90.0));
    const QImage mirrored = image.mirrored(true, false);
    for (int y = 0; y < side; ++y) {
      for (int x = 0; x < side; ++x) {
        EXPECT_NEAR(qAlpha(image.pixel(x, y)), qAlpha(quarter.pixel(x, y)), 3)
            << side << ": " << x << ',' << y;
        EXPECT_NEAR(qAlpha(image.pixel(x, y)), qAlpha(mirrored.pixel(x, y)), 3)
            << side << ": " << x << ',' << y;
      }
    }
  }
}

TEST(StatusPicturePainterTest, coversTheAreaOfTwelveLinesWithRoundCaps) {
  constexpr double length = 8.0 * (0.94 - 0.6);
  const auto area = [](double width) { return length * width + std::numbers::pi * width * width / 4.0; };
  for (const int side : sides) {
    const QImage image = statusPictureImage(dialPicture({.progress = 0.6, .minFilledAlpha = 1.0}), side);
    double covered = 0.0;
    for (int y = 0; y < side; ++y) {
      for (int x = 0; x < side; ++x) covered += qAlpha(image.pixel(x, y)) / 255.0;
    }
    const double scale = side / 18.0;
    const double expected = scale * scale * (7.0 * area(1.6) + 5.0 * 0.22 * area(1.12));
    EXPECT_NEAR(covered / expected, 1.0, 0.05) << side;
  }
}

TEST(StatusPicturePainterTest, aTickHasItsColourAndTheMiddleAndTheCornersAreClear) {
  const QImage image =
      statusPictureImage(dialPicture({.progress = 1.0}), 48).convertToFormat(QImage::Format_ARGB32);
  const QRgb last = image.pixel(17, 12);  // in the middle of tick 11
  EXPECT_EQ(qAlpha(last), 255);
  EXPECT_NEAR(qRed(last), 0.784 * 255, 1.0);
  EXPECT_NEAR(qGreen(last), 0.22 * 255, 1.0);
  EXPECT_NEAR(qBlue(last), 0.157 * 255, 1.0);
  EXPECT_EQ(dialAlphaAt(image, 24, 24), 0);
  for (const int x : {0, 47}) {
    for (const int y : {0, 47}) EXPECT_EQ(dialAlphaAt(image, x, y), 0);
  }
}

TEST(StatusPicturePainterTest, keepsThePaddingInProportion) {
  const QImage image = statusPictureImage(dialPicture({.progress = 1.0}), 36);
  // The upper tick ends 1 + 8 x 0.06 - 0.8 points below the edge.
  EXPECT_EQ(dialAlphaAt(image, 18, 0), 0);
  EXPECT_GT(dialAlphaAt(image, 18, 2), 0);
}

TEST(StatusPicturePainterTest, thePictureIsCentredInAnAreaThatIsNotSquare) {
  QImage image(22, 26, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  QPainter painter(&image);
  paintStatusPicture(painter, image.rect(), dialPicture({.progress = 0.6}));
  painter.end();
  EXPECT_EQ(image.copy(0, 2, 22, 22), statusPictureImage(dialPicture({.progress = 0.6}), 22));
}

TEST(StatusPicturePainterTest, roundedPicturesAreEqualWhenTheyLookTheSame) {
  const auto at = [](double calm) { return rounded(dialPicture({.progress = 0.9, .calmOverlay = calm})); };
  EXPECT_EQ(at(0.5), at(0.5005));
  EXPECT_NE(at(0.5), at(0.51));
  EXPECT_EQ(rounded(at(0.5)), at(0.5));
}

// VORLI_UPDATE_GOLDEN=1 writes the sheet again; look at it before you commit it.
TEST(StatusPicturePainterTest, everyStateMatchesItsReviewedPicture) {
  const QString golden = QStringLiteral(VORLI_GOLDEN_DIRECTORY "/dial.png");
  const QImage sheet = contactSheet();
  const bool update = std::getenv("VORLI_UPDATE_GOLDEN") != nullptr;
  ASSERT_TRUE(!update || sheet.save(golden));
  const QImage expected = QImage(golden).convertToFormat(QImage::Format_RGB32);
  ASSERT_EQ(sheet.size(), expected.size());
  int worst = 0;
  for (int y = 0; y < sheet.height(); ++y) {
    for (int x = 0; x < sheet.width(); ++x) {
      const QRgb now = sheet.pixel(x, y), then = expected.pixel(x, y);
      worst = std::max({worst, std::abs(qRed(now) - qRed(then)), std::abs(qGreen(now) - qGreen(then)),
                        std::abs(qBlue(now) - qBlue(then))});
    }
  }
  EXPECT_LE(worst, 3);
}

}  // namespace
}  // namespace vorli::ui
