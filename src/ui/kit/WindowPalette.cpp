#include "ui/kit/WindowPalette.h"

#include "ambient/Palette.h"

#include <QLinearGradient>
#include <cmath>

namespace vorli::ui {
namespace {

QColor shade(const Colour& colour, double alpha = 1.0) {
  const auto byte = [](double component) { return static_cast<int>(std::lround(component * 255.0)); };
  QColor converted(byte(colour.red), byte(colour.green), byte(colour.blue));
  converted.setAlphaF(static_cast<float>(alpha));
  return converted;
}
QColor black(double alpha) {
  return shade(palette::black, alpha);
}
QColor white(double alpha) {
  return shade(palette::white, alpha);
}

MarkColours lightMark() {
  return {.ground = {shade({1.0, 0.996, 0.98}), shade({0.929, 0.894, 0.827})},
          .line = shade({0.353, 0.255, 0.098}, 0.16),
          .firstTick = shade({0.549, 0.796, 0.776}),
          .lastTick = shade(palette::calmForLight),
          .waitingTick = shade({0.306, 0.573, 0.553})};
}

PagePictureColours lightPicture() {
  return {
      .skyStart = shade({0.89, 0.937, 0.918}),
      .skyEnd = shade({0.953, 0.906, 0.824}),
      .desktopLine = shade(palette::umber, 0.20),
      .panel = white(0.72),
      .bar = shade(palette::ink, 0.13),
      .notice = shade(palette::porcelain),
      .bubble = shade(palette::porcelain),
      .bubbleLine = shade(palette::umber, 0.16),
      .litTick = shade(palette::tangerine),
      .glowOuter = shade(palette::orange),
      .glowInner = shade(palette::yellow),
      .glowOpacity = 0.44,
  };
}

MarkColours darkMark() {
  return {.ground = {shade({0.2, 0.2, 0.184}), shade({0.118, 0.118, 0.106})},
          .line = white(0.13),
          .firstTick = shade({0.294, 0.541, 0.525}),
          .lastTick = shade({0.557, 0.863, 0.847}),
          .waitingTick = shade(palette::teal)};
}

PagePictureColours darkPicture() {
  return {
      .skyStart = shade({0.169, 0.2, 0.196}),
      .skyEnd = shade({0.165, 0.145, 0.118}),
      .desktopLine = white(0.14),
      .panel = black(0.35),
      .bar = white(0.16),
      .notice = shade({0.204, 0.204, 0.184}),
      .bubble = shade({0.188, 0.188, 0.173}),
      .bubbleLine = white(0.14),
      .litTick = shade(palette::tangerine),
      .glowOuter = shade(palette::orange),
      .glowInner = shade(palette::yellow),
      .glowOpacity = 0.46,
  };
}

LetterTileColours lightTiles() {
  return {.hues = {{{shade({0.953, 0.827, 0.796}), shade({0.494, 0.18, 0.133})},
                    {shade({0.957, 0.878, 0.749}), shade({0.463, 0.314, 0.102})},
                    {shade({0.839, 0.922, 0.859}), shade({0.137, 0.376, 0.235})},
                    {shade({0.824, 0.918, 0.906}), shade({0.141, 0.349, 0.333})},
                    {shade({0.914, 0.875, 0.812}), shade({0.357, 0.29, 0.173})},
                    {shade({0.89, 0.882, 0.859}), shade(palette::secondaryInk)}}},
          .line = black(0.102)};
}

LetterTileColours darkTiles() {
  return {.hues = {{{shade({0.29, 0.165, 0.141}), shade({0.957, 0.722, 0.675})},
                    {shade({0.278, 0.216, 0.122}), shade({0.945, 0.796, 0.553})},
                    {shade({0.133, 0.224, 0.169}), shade({0.647, 0.867, 0.725})},
                    {shade({0.122, 0.231, 0.224}), shade({0.608, 0.863, 0.847})},
                    {shade({0.227, 0.2, 0.153}), shade({0.863, 0.788, 0.651})},
                    {shade({0.204, 0.2, 0.184}), shade(palette::ash)}}},
          .line = white(0.141)};
}

WindowPalette makeLightWindow() {
  return {
      .surface = shade({0.988, 0.976, 0.949}),
      .ink = shade(palette::ink),
      .ink2 = shade(palette::secondaryInk),
      .meta = shade({0.396, 0.392, 0.388}),
      .accent = shade(palette::calmForLight),
      .accentInk = shade({0.184, 0.384, 0.369}),
      .card = {shade(palette::ivory), shade({0.969, 0.953, 0.918})},
      .border = black(0.07),
      .divider = black(0.05),
      .lip = white(0.90),
      .wash = shade(palette::brown, 0.14),
      .wash2 = shade(palette::brown, 0.07),
      .calmWash = shade({0.369, 0.722, 0.69}, 0.17),
      .calmLine = shade(palette::calmForLight, 0.18),
      .primary = {shade({0.275, 0.498, 0.482}), shade({0.216, 0.424, 0.408})},
      .primaryText = shade(palette::ivory),
      .primaryLine = black(0.12),
      .primaryLip = white(0.28),
      .pill = {shade(palette::white), shade({0.973, 0.957, 0.922})},
      .pillLine = black(0.11),
      .offLine = shade({0.522, 0.51, 0.49}),
      .knob = {shade(palette::white), shade({0.953, 0.937, 0.902})},
      .amber = shade(palette::amber),
      .warn = shade({0.69, 0.471, 0.184}),
      .amberInk = shade({0.522, 0.353, 0.106}),
      .amberWash = shade(palette::amber, 0.17),
      .amberLine = shade(palette::gold, 0.26),
      .red = shade(palette::softRed),
      .redInk = shade({0.612, 0.2, 0.153}),
      .redWash = shade(palette::softRed, 0.12),
      .redLine = shade(palette::softRed, 0.28),
      .green = shade({0.235, 0.604, 0.408}),
      .idle = shade({0.659, 0.643, 0.612}),
      .field = shade(palette::white),
      .fieldLine = black(0.10),
      .toast = {shade(palette::white), shade({0.984, 0.973, 0.945})},
      .toastLine = black(0.08),
      .windowLine = shade(palette::umber, 0.20),
      .gleam = shade({0.753, 0.541, 0.243}),
      .scroll = shade(palette::ink, 0.20),
      .tealBloom = shade(palette::teal, 0.10),
      .amberBloom = shade(palette::amber, 0.10),
      .halo = shade(palette::teal, 0.42),
      .side = {shade(palette::brown, 0.055), shade(palette::brown, 0.055)},
      .cardShadow = shade(palette::bistre, 0.04),
      .pillShadow = shade(palette::bistre, 0.07),
      .knobLine = black(0.22),
      .knobShadow = black(0.22),
      .motifOpacity = 0.13F,
      .letterpress = white(0.85),
      .letterpressOffset = 1.0,
      .mark = lightMark(),
      .toastShadows = {.near = black(0.08), .far = shade({0.157, 0.118, 0.039}, 0.18)},
      .windowShadows = {{{shade(palette::bistre, 0.20), 48.0, 18.0},
                         {shade(palette::bistre, 0.10), 6.0, 2.0}}},
      .picture = lightPicture(),
      .letterTile = lightTiles(),
  };
}

WindowPalette makeDarkWindow() {
  return {
      .surface = shade({0.09, 0.09, 0.082}),
      .ink = shade(palette::chalk),
      .ink2 = shade(palette::ash),
      .meta = shade(palette::mutedInkForDark),
      .accent = shade(palette::teal),
      .accentInk = shade(palette::teal),
      .card = {white(0.045), white(0.022)},
      .border = white(0.10),
      .divider = white(0.06),
      .lip = white(0.05),
      .wash = white(0.075),
      .wash2 = white(0.045),
      .calmWash = shade(palette::teal, 0.13),
      .calmLine = shade(palette::teal, 0.16),
      .primary = {shade({0.525, 0.776, 0.761}), shade(palette::calm)},
      .primaryText = shade({0.059, 0.122, 0.114}),
      .primaryLine = black(0.35),
      .primaryLip = white(0.35),
      .pill = {white(0.115), white(0.06)},
      .pillLine = white(0.13),
      .offLine = white(0.40),
      .knob = {shade(palette::chalk), shade({0.812, 0.796, 0.761})},
      .amber = shade(palette::apricot),
      .warn = shade(palette::apricot),
      .amberInk = shade({0.929, 0.714, 0.439}),
      .amberWash = shade(palette::amber, 0.11),
      .amberLine = shade(palette::amber, 0.24),
      .red = shade(palette::softRed),
      .redInk = shade({0.949, 0.604, 0.549}),
      .redWash = shade(palette::softRed, 0.14),
      .redLine = shade(palette::softRed, 0.28),
      .green = shade(palette::green),
      .idle = shade({0.431, 0.424, 0.408}),
      .field = white(0.05),
      .fieldLine = white(0.12),
      .toast = {shade({0.196, 0.196, 0.18}), shade({0.165, 0.165, 0.153})},
      .toastLine = white(0.13),
      .windowLine = white(0.13),
      .gleam = shade({0.953, 0.851, 0.651}),
      .scroll = white(0.22),
      .tealBloom = shade(palette::teal, 0.06),
      .amberBloom = shade(palette::amber, 0.04),
      .halo = shade(palette::teal, 0.22),
      .side = {white(0.030), white(0.012)},
      .cardShadow = Qt::transparent,
      .pillShadow = black(0.25),
      .knobLine = black(0.22),
      .knobShadow = black(0.22),
      .motifOpacity = 0.09F,
      .letterpress = black(0.75),
      .letterpressOffset = -1.0,
      .mark = darkMark(),
      .toastShadows = {.near = black(0.30), .far = black(0.50)},
      .windowShadows = {{{black(0.55), 56.0, 22.0}, {black(0.40), 8.0, 2.0}}},
      .picture = darkPicture(),
      .letterTile = darkTiles(),
  };
}

}  // namespace

QBrush VerticalGradient::over(const QRectF& area) const {
  QLinearGradient gradient(area.topLeft(), area.bottomLeft());
  gradient.setColorAt(0.0, top);
  gradient.setColorAt(1.0, bottom);
  return gradient;
}

const WindowPalette& WindowPalette::of(Appearance appearance) {
  static const WindowPalette light = makeLightWindow();
  static const WindowPalette dark = makeDarkWindow();
  return appearance == Appearance::dark ? dark : light;
}

}  // namespace vorli::ui
