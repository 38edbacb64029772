#include "tests/ui/popover/AlphaAt.h"
#include "tests/ui/popover/Palettes.h"
#include "ui/popover/ControlPainter.h"
#include "ui/popover/CulpritPainter.h"

#include <QImage>
#include <QPainter>
#include <functional>
#include <gtest/gtest.h>

namespace vorli::ui {
namespace {

QImage paintedControl(const std::function<void(QPainter&)>& paint) {
  QImage image(270, 304, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  QPainter painter(&image);
  painter.setRenderHint(QPainter::Antialiasing);
  paint(painter);
  return image;
}

constexpr double plateTolerance = 0.005;

QImage gear(const ControlPicture& state, const PopoverPalette& palette = lightPopover) {
  return paintedControl([&](QPainter& painter) { paintGear(painter, state, palette); });
}

TEST(GearPainter, hasAPlateOnlyUnderThePointer) {
  EXPECT_EQ(alphaAt(gear({}), 238, 22), 0.0);
  EXPECT_NEAR(alphaAt(gear({.hover = 1.0}), 238, 22), 0.14, plateTolerance);
  EXPECT_NEAR(alphaAt(gear({.hover = 0.5}), 238, 22), 0.07, plateTolerance);
  EXPECT_NEAR(alphaAt(gear({.hover = 1.0, .press = 1.0}), 238, 22), 0.30, plateTolerance);
  EXPECT_NEAR(alphaAt(gear({.hover = 1.0}, darkPopover), 238, 22), 0.10, plateTolerance);
  EXPECT_EQ(alphaAt(gear({.hover = 1.0}), 234, 8), 0.0);  // round corners
  EXPECT_EQ(alphaAt(gear({.hover = 1.0}), 233, 22), 0.0);
  EXPECT_EQ(alphaAt(gear({.hover = 1.0}), 262, 22), 0.0);
}

TEST(GearPainter, keyPressRaisesItLikeThePointer) {
  EXPECT_EQ(gear({.press = 1.0}), gear({.hover = 1.0, .press = 1.0}));
  EXPECT_EQ(gear({.press = -0.1}), gear({}));
}

TEST(GearPainter, wheelHasEightTeethAndAHole) {
  const QImage image = gear({});
  EXPECT_LT(alphaAt(image, 248, 22), 0.3);          // in the hole
  EXPECT_GT(alphaAt(image, 248, 22 - 6), 0.3);      // the tooth at the top, 5.4 off the middle
  EXPECT_GT(alphaAt(image, 248 + 5, 22), 0.3);      // and at the right
  EXPECT_LT(alphaAt(image, 248 + 2, 22 - 6), 0.3);  // not beside it
  EXPECT_GT(alphaAt(image, 248 - 2, 22), 0.3);      // the edge of the hole
}

TEST(GearPainter, focusLiesInsideOfItsPlate) {
  const QImage image = gear({.focused = true});
  EXPECT_NEAR(alphaAt(image, 235, 22), 1.0, plateTolerance);  // one inside, two wide
  EXPECT_NEAR(alphaAt(image, 234, 22), 1.0, plateTolerance);
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
                const PopoverPalette& palette = lightPopover) {
  return paintedControl([&](QPainter& painter) {
    paintQuit(painter, placedQuit(), {{}, cancel, quit, 1.0}, palette);
  });
}

TEST(QuitPainter, cancelIsAPlateThatDarkensUnderThePointerAndAgainWhenPressed) {
  EXPECT_NEAR(alphaAt(question({}, {}), 89, 269), 0.14, plateTolerance);
  EXPECT_NEAR(alphaAt(question({.hover = 1.0}, {}), 89, 269), 0.22, plateTolerance);
  EXPECT_NEAR(alphaAt(question({.hover = 1.0, .press = 1.0}, {}), 89, 269), 0.30, plateTolerance);
  EXPECT_NEAR(alphaAt(question({.press = 1.2}, {}), 89, 269), 0.30,
              plateTolerance);  // a spring that overshoots
  EXPECT_NEAR(alphaAt(question({}, {}, darkPopover), 89, 269), 0.10, plateTolerance);
  EXPECT_NEAR(alphaAt(question({.press = 1.0}, {}, darkPopover), 89, 269), 0.07, plateTolerance);
}

TEST(QuitPainter, quitIsSolid) {
  const auto redOf = [](const ControlPicture& state, const PopoverPalette& palette) {
    return question({}, state, palette).pixelColor(181, 269).redF();
  };
  EXPECT_NEAR(redOf({}, lightPopover), 0.227, plateTolerance);
  EXPECT_NEAR(redOf({.hover = 1.0}, lightPopover), 0.165, plateTolerance);
  EXPECT_NEAR(redOf({.hover = 1.0, .press = 1.0}, lightPopover), 0.102, plateTolerance);
  EXPECT_NEAR(redOf({}, darkPopover), 0.91, plateTolerance);
  EXPECT_NEAR(redOf({.hover = 1.0}, darkPopover), 0.965, plateTolerance);
  EXPECT_NEAR(redOf({.press = 1.0}, darkPopover), 0.80, plateTolerance);
}

TEST(QuitPainter, capsulesAreRoundAndTheirFocusIsThreePointsAway) {
  EXPECT_EQ(alphaAt(question({}, {}), 47, 255), 0.0);
  const QImage image = question({.focused = true}, {});
  EXPECT_NEAR(alphaAt(image, 89, 251), 1.0, plateTolerance);
  EXPECT_NEAR(alphaAt(image, 89, 252), 1.0, plateTolerance);
  EXPECT_EQ(alphaAt(image, 89, 250), 0.0);
  EXPECT_EQ(alphaAt(image, 89, 254), 0.0);
}

QImage link(const ControlPicture& state, const PopoverPalette& palette = lightPopover) {
  const PlacedLabel placed{{78.0, 240.0, 113.0, 26.0}, {}};
  return paintedControl([&](QPainter& painter) {
    paintLink(painter, placed, {169.0, 248.0, 10.0, 10.0}, state, palette);
  });
}

TEST(LinkPainter, capsuleLightsUpUnderThePointerAndShrinksWhenPressed) {
  EXPECT_NEAR(alphaAt(link({}), 130, 250), 0.10, plateTolerance);
  EXPECT_NEAR(alphaAt(link({.hover = 1.0}), 130, 250), 0.18, plateTolerance);
  EXPECT_NEAR(alphaAt(link({}, darkPopover), 130, 250), 0.11, plateTolerance);
  EXPECT_NEAR(alphaAt(link({.hover = 1.0}, darkPopover), 130, 250), 0.19, plateTolerance);
  EXPECT_NEAR(alphaAt(link({}), 78, 252), 0.10, 0.02);
  EXPECT_NEAR(alphaAt(link({.hover = 1.0, .press = 1.0}), 78, 252), 0.0, 0.01);  // 0.98 of 113
  EXPECT_NEAR(alphaAt(link({.press = 1.0, .scales = false}), 78, 252), 0.18, 0.02);
}

TEST(LinkPainter, keyPressRaisesItLikeThePointer) {
  EXPECT_EQ(link({.press = 1.0}), link({.hover = 1.0, .press = 1.0}));
  EXPECT_EQ(link({.press = -0.1, .scales = false}), link({.scales = false}));  // a spring on its way back
}

TEST(LinkPainter, arrowIsInItsSquare) {
  const QImage image = link({});
  EXPECT_GT(alphaAt(image, 170, 253), 0.5);  // left side
  EXPECT_GT(alphaAt(image, 177, 254), 0.5);  // right side
  EXPECT_GT(alphaAt(image, 175, 251), 0.4);  // the arrow's shaft
  EXPECT_LT(alphaAt(image, 172, 250), 0.2);  // beside the shaft
}

TEST(BannerPainter, isDrawnOnACapsule) {
  const PlacedLabel placed{{80.0, 221.0, 110.0, 24.0}, {}};
  for (const auto* palette : {&lightPopover, &darkPopover}) {
    const QImage image = paintedControl([&](QPainter& painter) { paintBanner(painter, placed, *palette); });
    EXPECT_NEAR(alphaAt(image, 135, 230), 0.13, plateTolerance);
    EXPECT_EQ(alphaAt(image, 80, 221), 0.0);
    EXPECT_EQ(alphaAt(image, 135, 245), 0.0);
  }
}

// A name without a letter shows only the plate.
QImage name(const ControlPicture& state, const PopoverPalette& palette = lightPopover) {
  PlacedCulprits culprits;
  culprits.names.push_back({QString(), {100.0, 240.0, 60.0, 14.0}, 251.0});
  const std::vector<ControlPicture> states{state};
  return paintedControl([&](QPainter& painter) { paintCulprits(painter, culprits, states, palette); });
}

TEST(NamePainter, plateComesWithThePointerAndGrowsWithTheName) {
  EXPECT_EQ(alphaAt(name({}), 130, 247), 0.0);
  EXPECT_NEAR(alphaAt(name({.hover = 1.0}), 130, 247), 0.16, plateTolerance);
  EXPECT_NEAR(alphaAt(name({.hover = 0.5}), 130, 247), 0.08, plateTolerance);
  // 70 wide, and 1.06 of it.
  EXPECT_NEAR(alphaAt(name({.hover = 1.0}), 93, 247), 0.16, plateTolerance);
  EXPECT_EQ(alphaAt(name({.hover = 1.0}), 91, 247), 0.0);
  EXPECT_EQ(alphaAt(name({.hover = 1.0, .scales = false}), 94, 247), 0.0);
  EXPECT_NEAR(alphaAt(name({.hover = 1.0, .scales = false}), 95, 247), 0.16, plateTolerance);
  // 0.92 of it while it is held down.
  EXPECT_EQ(alphaAt(name({.hover = 1.0, .press = 1.0}), 96, 247), 0.0);
  EXPECT_NEAR(alphaAt(name({.hover = 1.0, .press = 1.0}), 98, 247), 0.16, plateTolerance);
}

// Columns with ink in the line of the culprits, from `from` to `to`.
std::vector<int> inkedColumns(const ControlPicture& state, int from, int to) {
  WordsPicture words;
  words.culprits =
      CulpritPicture{.pieces = {{CulpritPiece::Kind::name, QStringLiteral("Chrome")},
                                {CulpritPiece::Kind::text, QStringLiteral(" is using the most right now.")}},
                     .names = {{}}};
  auto placed = *PopoverLayout::of(words, 1.0).culprits;
  const double shift = 60.0 - placed.names[0].box.left();
  const auto draw = [&](bool withText) {
    auto shown = placed;
    for (auto& name : shown.names) {
      name.box.translate(shift, 0.0);
      name.text.clear();
    }
    for (auto& text : shown.texts) text.origin.rx() += shift;
    if (!withText) shown.texts.clear();
    return paintedControl([&](QPainter& painter) {
      const std::vector<ControlPicture> states{state};
      paintCulprits(painter, shown, states, lightPopover);
    });
  };
  const QImage plate = draw(false), both = draw(true);
  std::vector<int> columns;
  for (int x = from; x < to; ++x) {
    bool inked = false, plated = false;
    for (int y = 0; y < both.height(); ++y) {
      plated |= plate.pixelColor(x, y).alpha() > 2;
      inked |= both.pixel(x, y) != plate.pixel(x, y);
    }
    if (plated && inked) columns.push_back(x);
  }
  return columns;
}

TEST(NamePainter, plateDoesNotTouchTheWordsBesideIt) {
  EXPECT_EQ(inkedColumns({.hover = 1.0}, 0, 270), std::vector<int>{});
  EXPECT_EQ(inkedColumns({.hover = 1.0, .scales = false}, 0, 270), std::vector<int>{});
  EXPECT_EQ(inkedColumns({.focused = true}, 0, 270), std::vector<int>{});
}

TEST(NamePainter, wordsMoveAsideOnTheirOwnLineAlone) {
  PlacedCulprits culprits;
  culprits.names = {{QString(), {100.0, 240.0, 60.0, 14.0}, 251.0}};
  culprits.texts = {{QStringLiteral("|"), {163.0, 251.0}}, {QStringLiteral("|"), {163.0, 267.0}}};
  const auto inkAt = [&](const ControlPicture& state, double baseline) {
    const QImage image = paintedControl([&](QPainter& painter) {
      const std::vector<ControlPicture> states{state};
      paintCulprits(painter, culprits, states, lightPopover);
    });
    int x = 162;
    while (x < 180 && image.pixelColor(x, static_cast<int>(baseline) - 4).alpha() < 60) ++x;
    return x;
  };
  EXPECT_GT(inkAt({.hover = 1.0}, 251.0), inkAt({}, 251.0) + 3);
  EXPECT_EQ(inkAt({.hover = 1.0}, 267.0), inkAt({}, 267.0));
}

TEST(NamePainter, plateReachesTwoPointsAboveAndBelow) {
  const QImage image = name({.hover = 1.0, .scales = false});
  EXPECT_NEAR(alphaAt(image, 130, 238), 0.16, plateTolerance);
  EXPECT_EQ(alphaAt(image, 130, 237), 0.0);
  EXPECT_NEAR(alphaAt(image, 130, 255), 0.16, plateTolerance);
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
