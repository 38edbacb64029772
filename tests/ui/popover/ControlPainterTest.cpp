#include "ui/popover/ControlPainter.h"
#include "ui/popover/CulpritPainter.h"

#include <QImage>
#include <QPainter>
#include <functional>
#include <gtest/gtest.h>

namespace vorli::ui {
namespace {

const PopoverPalette& light = PopoverPalette::of(Appearance::light);
const PopoverPalette& dark = PopoverPalette::of(Appearance::dark);

QImage painted(const std::function<void(QPainter&)>& paint) {
  QImage image(270, 304, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  QPainter painter(&image);
  painter.setRenderHint(QPainter::Antialiasing);
  paint(painter);
  return image;
}

double alphaAt(const QImage& image, int x, int y) {
  return static_cast<double>(image.pixelColor(x, y).alphaF());
}

constexpr double tolerance = 0.005;

QImage gear(const ControlPicture& state, const PopoverPalette& palette = light) {
  return painted([&](QPainter& painter) { paintGear(painter, state, palette); });
}

TEST(GearPainter, hasAPlateOnlyUnderThePointer) {
  EXPECT_EQ(alphaAt(gear({}), 238, 22), 0.0);
  EXPECT_NEAR(alphaAt(gear({.hover = 1.0}), 238, 22), 0.14, tolerance);
  EXPECT_NEAR(alphaAt(gear({.hover = 0.5}), 238, 22), 0.07, tolerance);
  EXPECT_NEAR(alphaAt(gear({.hover = 1.0, .press = 1.0}), 238, 22), 0.30, tolerance);
  EXPECT_NEAR(alphaAt(gear({.hover = 1.0}, dark), 238, 22), 0.10, tolerance);
  EXPECT_EQ(alphaAt(gear({.hover = 1.0}), 234, 8), 0.0);  // round corners
  EXPECT_EQ(alphaAt(gear({.hover = 1.0}), 233, 22), 0.0);
  EXPECT_EQ(alphaAt(gear({.hover = 1.0}), 262, 22), 0.0);
}

TEST(GearPainter, keyRaisesItAsThePointerDoes) {
  EXPECT_EQ(gear({.press = 1.0}), gear({.hover = 1.0, .press = 1.0}));
  EXPECT_EQ(gear({.press = -0.1}), gear({}));
}

TEST(GearPainter, wheelHasEightTeethAndAHole) {
  const QImage image = gear({});
  EXPECT_EQ(alphaAt(image, 248, 22), 0.0);          // in the hole
  EXPECT_GT(alphaAt(image, 248, 22 - 7), 0.3);      // the tooth at the top, 6.35 off the middle
  EXPECT_GT(alphaAt(image, 248 + 6, 22), 0.3);      // and at the right
  EXPECT_LT(alphaAt(image, 248 + 2, 22 - 7), 0.3);  // not beside it
  EXPECT_GT(alphaAt(image, 248 - 3, 22), 0.3);      // the edge of the hole
}

TEST(GearPainter, focusLiesInsideOfItsPlate) {
  const QImage image = gear({.focused = true});
  EXPECT_NEAR(alphaAt(image, 235, 22), 1.0, tolerance);  // one inside, two wide
  EXPECT_NEAR(alphaAt(image, 234, 22), 1.0, tolerance);
  EXPECT_EQ(alphaAt(image, 233, 22), 0.0);
  EXPECT_EQ(alphaAt(image, 237, 22), 0.0);
}

PlacedQuit placedQuit() {
  PlacedQuit placed;
  placed.cancel = {47.0, 255.0, 84.0, 28.0};
  placed.quit = {139.0, 255.0, 84.0, 28.0};
  return placed;
}
QImage question(const ControlPicture& cancel, const ControlPicture& quit,
                const PopoverPalette& palette = light) {
  return painted([&](QPainter& painter) {
    paintQuit(painter, placedQuit(), {{}, cancel, quit, 1.0}, palette);
  });
}

TEST(QuitPainter, cancelIsAPlateThatDarkensUnderThePointerAndAgainWhenPressed) {
  EXPECT_NEAR(alphaAt(question({}, {}), 89, 269), 0.14, tolerance);
  EXPECT_NEAR(alphaAt(question({.hover = 1.0}, {}), 89, 269), 0.22, tolerance);
  EXPECT_NEAR(alphaAt(question({.hover = 1.0, .press = 1.0}, {}), 89, 269), 0.30, tolerance);
  EXPECT_NEAR(alphaAt(question({.press = 1.2}, {}), 89, 269), 0.30,
              tolerance);  // a spring that overshoots
  EXPECT_NEAR(alphaAt(question({}, {}, dark), 89, 269), 0.10, tolerance);
  EXPECT_NEAR(alphaAt(question({.press = 1.0}, {}, dark), 89, 269), 0.07, tolerance);
}

TEST(QuitPainter, quitIsSolid) {
  const auto redOf = [](const ControlPicture& state, const PopoverPalette& palette) {
    return question({}, state, palette).pixelColor(181, 269).redF();
  };
  EXPECT_NEAR(redOf({}, light), 0.227, tolerance);
  EXPECT_NEAR(redOf({.hover = 1.0}, light), 0.165, tolerance);
  EXPECT_NEAR(redOf({.hover = 1.0, .press = 1.0}, light), 0.102, tolerance);
  EXPECT_NEAR(redOf({}, dark), 0.91, tolerance);
  EXPECT_NEAR(redOf({.hover = 1.0}, dark), 0.965, tolerance);
  EXPECT_NEAR(redOf({.press = 1.0}, dark), 0.80, tolerance);
}

TEST(QuitPainter, capsulesAreRoundAndTheirFocusStandsThreePointsOff) {
  EXPECT_EQ(alphaAt(question({}, {}), 47, 255), 0.0);
  const QImage image = question({.focused = true}, {});
  EXPECT_NEAR(alphaAt(image, 89, 251), 1.0, tolerance);
  EXPECT_NEAR(alphaAt(image, 89, 252), 1.0, tolerance);
  EXPECT_EQ(alphaAt(image, 89, 250), 0.0);
  EXPECT_EQ(alphaAt(image, 89, 254), 0.0);
}

QImage link(const ControlPicture& state, const PopoverPalette& palette = light) {
  const PlacedLabel placed{{78.0, 240.0, 113.0, 26.0}, {}};
  return painted([&](QPainter& painter) {
    paintLink(painter, placed, {169.0, 248.0, 10.0, 10.0}, state, palette);
  });
}

TEST(LinkPainter, capsuleLightsUpUnderThePointerAndShrinksWhenPressed) {
  EXPECT_NEAR(alphaAt(link({}), 130, 250), 0.10, tolerance);
  EXPECT_NEAR(alphaAt(link({.hover = 1.0}), 130, 250), 0.18, tolerance);
  EXPECT_NEAR(alphaAt(link({}, dark), 130, 250), 0.11, tolerance);
  EXPECT_NEAR(alphaAt(link({.hover = 1.0}, dark), 130, 250), 0.19, tolerance);
  EXPECT_NEAR(alphaAt(link({}), 78, 252), 0.10, 0.02);
  EXPECT_NEAR(alphaAt(link({.hover = 1.0, .press = 1.0}), 78, 252), 0.0, 0.01);  // 0.98 of 113
  EXPECT_NEAR(alphaAt(link({.press = 1.0, .scales = false}), 78, 252), 0.18, 0.02);
}

TEST(LinkPainter, keyRaisesItAsThePointerDoes) {
  EXPECT_EQ(link({.press = 1.0}), link({.hover = 1.0, .press = 1.0}));
  EXPECT_EQ(link({.press = -0.1, .scales = false}), link({.scales = false}));  // a spring on its way back
}

TEST(LinkPainter, arrowStandsInItsSquare) {
  const QImage image = link({});
  EXPECT_GT(alphaAt(image, 169, 253), 0.5);  // left side
  EXPECT_GT(alphaAt(image, 178, 253), 0.5);  // right side
  EXPECT_GT(alphaAt(image, 174, 252), 0.4);  // the arrow's shaft
  EXPECT_NEAR(alphaAt(image, 171, 250), 0.10, 0.02);
}

TEST(BannerPainter, standsOnACapsule) {
  const PlacedLabel placed{{80.0, 221.0, 110.0, 24.0}, {}};
  for (const auto* palette : {&light, &dark}) {
    const QImage image = painted([&](QPainter& painter) { paintBanner(painter, placed, *palette); });
    EXPECT_NEAR(alphaAt(image, 135, 230), 0.13, tolerance);
    EXPECT_EQ(alphaAt(image, 80, 221), 0.0);
    EXPECT_EQ(alphaAt(image, 135, 245), 0.0);
  }
}

// A name without a letter: what is seen is its plate.
QImage name(const ControlPicture& state, const PopoverPalette& palette = light) {
  PlacedCulprits culprits;
  culprits.names.push_back({QString(), {100.0, 240.0, 60.0, 14.0}, 251.0});
  const std::vector<ControlPicture> states{state};
  return painted([&](QPainter& painter) { paintCulprits(painter, culprits, states, palette); });
}

TEST(NamePainter, plateComesWithThePointerAndGrowsWithTheName) {
  EXPECT_EQ(alphaAt(name({}), 130, 247), 0.0);
  EXPECT_NEAR(alphaAt(name({.hover = 1.0}), 130, 247), 0.16, tolerance);
  EXPECT_NEAR(alphaAt(name({.hover = 0.5}), 130, 247), 0.08, tolerance);
  // 70 wide, and 1.06 of it.
  EXPECT_NEAR(alphaAt(name({.hover = 1.0}), 93, 247), 0.16, tolerance);
  EXPECT_EQ(alphaAt(name({.hover = 1.0}), 91, 247), 0.0);
  EXPECT_EQ(alphaAt(name({.hover = 1.0, .scales = false}), 94, 247), 0.0);
  EXPECT_NEAR(alphaAt(name({.hover = 1.0, .scales = false}), 95, 247), 0.16, tolerance);
  // 0.92 of it when it is held down.
  EXPECT_EQ(alphaAt(name({.hover = 1.0, .press = 1.0}), 96, 247), 0.0);
  EXPECT_NEAR(alphaAt(name({.hover = 1.0, .press = 1.0}), 98, 247), 0.16, tolerance);
}

TEST(NamePainter, plateReachesTwoPointsAboveAndBelow) {
  const QImage image = name({.hover = 1.0, .scales = false});
  EXPECT_NEAR(alphaAt(image, 130, 238), 0.16, tolerance);
  EXPECT_EQ(alphaAt(image, 130, 237), 0.0);
  EXPECT_NEAR(alphaAt(image, 130, 255), 0.16, tolerance);
  EXPECT_EQ(alphaAt(image, 130, 256), 0.0);
}

TEST(NamePainter, focusIsTheOutlineOfThePlate) {
  const QImage image = name({.focused = true});
  EXPECT_GT(alphaAt(image, 94, 247), 0.9);
  EXPECT_GT(alphaAt(image, 95, 247), 0.9);
  EXPECT_EQ(alphaAt(image, 130, 247), 0.0);
}

}  // namespace
}  // namespace vorli::ui
