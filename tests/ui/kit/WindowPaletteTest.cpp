#include "ui/kit/WindowPalette.h"

#include <QList>
#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>

namespace vorli::ui {
namespace {

TEST(WindowPalette, colourIsRoundedToTheNearestByte) {
  const auto& light = WindowPalette::of(Appearance::light);
  EXPECT_EQ(light.accent, QColor(0x3D, 0x76, 0x72));
  EXPECT_EQ(light.amber, QColor(0xE4, 0xA4, 0x58));
  EXPECT_EQ(light.red, QColor(0xE4, 0x64, 0x54));
  EXPECT_EQ(light.ink, QColor(0x1A, 0x1A, 0x1C));
  const auto& dark = WindowPalette::of(Appearance::dark);
  EXPECT_EQ(dark.accent, QColor(0x7E, 0xD1, 0xCD));
  EXPECT_EQ(dark.meta, QColor(0xA0, 0x9E, 0x9A));
  EXPECT_EQ(dark.green, QColor(0x5E, 0xCB, 0x88));
}

TEST(WindowPalette, washKeepsTheColourAndTakesItsOwnOpacity) {
  const QColor wash = WindowPalette::of(Appearance::light).wash;
  EXPECT_EQ(wash.rgb(), QColor(140, 110, 70).rgb());
  EXPECT_NEAR(wash.alphaF(), 0.14, 1e-5);
}

QColor laidOver(const QColor& ground, const QColor& colour) {
  const auto part = [&colour](float below, float above) { return below + (above - below) * colour.alphaF(); };
  return QColor::fromRgbF(part(ground.redF(), colour.redF()), part(ground.greenF(), colour.greenF()),
                          part(ground.blueF(), colour.blueF()));
}

// Relative luminance and contrast as the accessibility guidelines for web content define them.
double luminance(const QColor& colour) {
  const auto linear = [](double part) {
    return part <= 0.03928 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
  };
  return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) + 0.0722 * linear(colour.blueF());
}

double contrast(const QColor& ground, const QColor& colour) {
  const double one = luminance(ground), other = luminance(laidOver(ground, colour));
  return (std::max(one, other) + 0.05) / (std::min(one, other) + 0.05);
}

QColor faint(QColor colour, double opacity) {
  colour.setAlphaF(static_cast<float>(opacity));
  return colour;
}

/// The grounds of a palette that have texts and symbols on them.
struct Grounds {
  explicit Grounds(const WindowPalette& palette)
      : surface(palette.surface),
        cardTop(laidOver(surface, palette.card.top)),
        cardFoot(laidOver(surface, palette.card.bottom)) {}
  QList<QColor> plain() const { return {surface, cardTop, cardFoot}; }

  QColor surface, cardTop, cardFoot;
};

TEST(WindowPaletteContrast, theWeakestPairsOfTheLightLookAreAsMeasured) {
  const auto& light = WindowPalette::of(Appearance::light);
  const Grounds on(light);
  EXPECT_NEAR(contrast(light.primary.top, light.primaryText), 4.51, 0.01);
  EXPECT_NEAR(contrast(laidOver(on.cardFoot, light.wash), light.meta), 4.52, 0.01);
  EXPECT_NEAR(contrast(on.cardFoot, light.accent), 4.70, 0.01);
  EXPECT_NEAR(contrast(on.cardFoot, faint(light.ink, 0.62)), 4.70, 0.01);
  EXPECT_NEAR(contrast(laidOver(on.cardFoot, light.amberWash), light.warn), 3.06, 0.01);
  EXPECT_NEAR(contrast(laidOver(on.cardFoot, light.wash2), light.offLine), 3.19, 0.01);
}

TEST(WindowPaletteContrast, everyTextAndEverySymbolCanBeReadOnEachOfItsGrounds) {
  for (const auto look : {Appearance::light, Appearance::dark}) {
    const auto& palette = WindowPalette::of(look);
    for (const auto& ground : Grounds(palette).plain()) {
      const QColor hovered = laidOver(ground, palette.wash2);
      for (const auto& text : {palette.ink, palette.ink2, palette.meta, faint(palette.ink, 0.62)})
        EXPECT_GE(contrast(ground, text), 4.5) << ground.name().toStdString();
      for (const auto& text : {palette.ink, palette.ink2, palette.meta})
        EXPECT_GE(contrast(hovered, text), 4.5) << ground.name().toStdString();
      EXPECT_GE(contrast(ground, palette.accent), 4.5);
      EXPECT_GE(contrast(laidOver(ground, palette.amberWash), palette.ink2), 4.5);
      EXPECT_GE(contrast(laidOver(ground, palette.redWash), palette.redInk), 4.5);
      EXPECT_GE(contrast(laidOver(ground, palette.calmWash), palette.accentInk), 4.5);
      EXPECT_GE(contrast(laidOver(ground, palette.amberWash), palette.amberInk), 4.5);
      EXPECT_GE(contrast(laidOver(ground, palette.calmWash), palette.accent), 3.0);
      EXPECT_GE(contrast(laidOver(ground, palette.amberWash), palette.warn), 3.0);
      EXPECT_GE(contrast(hovered, palette.offLine), 3.0);
    }
    for (const auto& ground : {palette.primary.top, palette.primary.bottom})
      EXPECT_GE(contrast(ground, palette.primaryText), 4.5);
  }
}

}  // namespace
}  // namespace vorli::ui
