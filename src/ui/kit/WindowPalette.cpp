#include "ui/kit/WindowPalette.h"

#include "ambient/Palette.h"

#include <QLinearGradient>
#include <cmath>

namespace vorli::ui {
namespace {

QColor rgb(QRgb value) {
  return QColor::fromRgb(value);
}
QColor rgba(int red, int green, int blue, double alpha) {
  QColor colour(red, green, blue);
  colour.setAlphaF(static_cast<float>(alpha));
  return colour;
}
QColor shade(const Colour& colour, double alpha = 1.0) {
  const auto byte = [](double component) { return static_cast<int>(std::lround(component * 255.0)); };
  return rgba(byte(colour.red), byte(colour.green), byte(colour.blue), alpha);
}
QColor black(double alpha) {
  return shade(palette::black, alpha);
}
QColor white(double alpha) {
  return shade(palette::white, alpha);
}

MarkColours lightMark() {
  return {.ground = {rgb(0xFFFEFA), rgb(0xEDE4D3)},
          .line = rgba(90, 65, 25, 0.16),
          .firstTick = rgb(0x8CCBC6),
          .lastTick = shade(palette::calmForLight),
          .waitingTick = rgb(0x4E928D)};
}

PagePictureColours lightPicture() {
  return {
      .skyStart = rgb(0xE3EFEA),
      .skyEnd = rgb(0xF3E7D2),
      .desktopLine = rgba(70, 52, 25, 0.20),
      .panel = white(0.72),
      .bar = rgba(26, 26, 28, 0.13),
      .notice = rgb(0xFFFEFB),
      .bubble = rgb(0xFFFEFB),
      .bubbleLine = rgba(70, 52, 25, 0.16),
      .litTick = rgb(0xE08A2C),
      .glowOuter = rgb(0xF18620),
      .glowInner = rgb(0xF2C42A),
      .glowOpacity = 0.44,
  };
}

MarkColours darkMark() {
  return {.ground = {rgb(0x33332F), rgb(0x1E1E1B)},
          .line = white(0.13),
          .firstTick = rgb(0x4B8A86),
          .lastTick = rgb(0x8EDCD8),
          .waitingTick = shade(palette::teal)};
}

PagePictureColours darkPicture() {
  return {
      .skyStart = rgb(0x2B3332),
      .skyEnd = rgb(0x2A251E),
      .desktopLine = white(0.14),
      .panel = black(0.35),
      .bar = white(0.16),
      .notice = rgb(0x34342F),
      .bubble = rgb(0x30302C),
      .bubbleLine = white(0.14),
      .litTick = rgb(0xE08A2C),
      .glowOuter = rgb(0xF18620),
      .glowInner = rgb(0xF2C42A),
      .glowOpacity = 0.46,
  };
}

LetterTileColours lightTiles() {
  return {.hues = {{{rgb(0xF3D3CB), rgb(0x7E2E22)},
                    {rgb(0xF4E0BF), rgb(0x76501A)},
                    {rgb(0xD6EBDB), rgb(0x23603C)},
                    {rgb(0xD2EAE7), rgb(0x245955)},
                    {rgb(0xE9DFCF), rgb(0x5B4A2C)},
                    {rgb(0xE3E1DB), rgb(0x4A4A4E)}}},
          .line = black(0.102)};
}

LetterTileColours darkTiles() {
  return {.hues = {{{rgb(0x4A2A24), rgb(0xF4B8AC)},
                    {rgb(0x47371F), rgb(0xF1CB8D)},
                    {rgb(0x22392B), rgb(0xA5DDB9)},
                    {rgb(0x1F3B39), rgb(0x9BDCD8)},
                    {rgb(0x3A3327), rgb(0xDCC9A6)},
                    {rgb(0x34332F), rgb(0xC6C3BC)}}},
          .line = white(0.141)};
}

WindowPalette makeLightWindow() {
  return {
      .surface = rgb(0xFCF9F2),
      .ink = shade(palette::ink),
      .ink2 = shade(palette::secondaryInk),
      .meta = rgb(0x656463),
      .accent = shade(palette::calmForLight),
      .accentInk = rgb(0x2F625E),
      .card = {rgb(0xFFFDF7), rgb(0xF7F3EA)},
      .border = black(0.07),
      .divider = black(0.05),
      .lip = white(0.90),
      .wash = shade(palette::brown, 0.14),
      .wash2 = shade(palette::brown, 0.07),
      .calmWash = rgba(94, 184, 176, 0.17),
      .calmLine = shade(palette::calmForLight, 0.18),
      .primary = {rgb(0x467F7B), rgb(0x376C68)},
      .primaryText = rgb(0xFFFDF7),
      .primaryLine = black(0.12),
      .primaryLip = white(0.28),
      .pill = {rgb(0xFFFFFF), rgb(0xF8F4EB)},
      .pillLine = black(0.11),
      .offLine = rgb(0x85827D),
      .knob = {rgb(0xFFFFFF), rgb(0xF3EFE6)},
      .amber = shade(palette::amber),
      .warn = rgb(0xB0782F),
      .amberInk = rgb(0x855A1B),
      .amberWash = shade(palette::amber, 0.17),
      .amberLine = shade(palette::gold, 0.26),
      .red = shade(palette::softRed),
      .redInk = rgb(0x9C3327),
      .redWash = shade(palette::softRed, 0.12),
      .redLine = shade(palette::softRed, 0.28),
      .green = rgb(0x3C9A68),
      .idle = rgb(0xA8A49C),
      .field = rgb(0xFFFFFF),
      .fieldLine = black(0.10),
      .toast = {rgb(0xFFFFFF), rgb(0xFBF8F1)},
      .toastLine = black(0.08),
      .windowLine = rgba(70, 52, 25, 0.20),
      .gleam = rgb(0xC08A3E),
      .scroll = shade(palette::ink, 0.20),
      .tealBloom = shade(palette::teal, 0.10),
      .amberBloom = shade(palette::amber, 0.10),
      .halo = shade(palette::teal, 0.42),
      .side = {shade(palette::brown, 0.055), shade(palette::brown, 0.055)},
      .cardShadow = rgba(60, 45, 20, 0.04),
      .pillShadow = rgba(60, 45, 20, 0.07),
      .knobLine = black(0.22),
      .knobShadow = black(0.22),
      .motifOpacity = 0.13F,
      .letterpress = white(0.85),
      .letterpressOffset = 1.0,
      .mark = lightMark(),
      .toastShadows = {.near = black(0.08), .far = rgba(40, 30, 10, 0.18)},
      .windowShadows = {{{rgba(60, 45, 20, 0.20), 48.0, 18.0}, {rgba(60, 45, 20, 0.10), 6.0, 2.0}}},
      .picture = lightPicture(),
      .letterTile = lightTiles(),
  };
}

WindowPalette makeDarkWindow() {
  return {
      .surface = rgb(0x171715),
      .ink = rgb(0xF1EFE9),
      .ink2 = rgb(0xC6C3BC),
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
      .primary = {rgb(0x86C6C2), shade(palette::calm)},
      .primaryText = rgb(0x0F1F1D),
      .primaryLine = black(0.35),
      .primaryLip = white(0.35),
      .pill = {white(0.115), white(0.06)},
      .pillLine = white(0.13),
      .offLine = white(0.40),
      .knob = {rgb(0xF1EFE9), rgb(0xCFCBC2)},
      .amber = rgb(0xF2B45E),
      .warn = rgb(0xF2B45E),
      .amberInk = rgb(0xEDB670),
      .amberWash = shade(palette::amber, 0.11),
      .amberLine = shade(palette::amber, 0.24),
      .red = shade(palette::softRed),
      .redInk = rgb(0xF29A8C),
      .redWash = shade(palette::softRed, 0.14),
      .redLine = shade(palette::softRed, 0.28),
      .green = shade(palette::green),
      .idle = rgb(0x6E6C68),
      .field = white(0.05),
      .fieldLine = white(0.12),
      .toast = {rgb(0x32322E), rgb(0x2A2A27)},
      .toastLine = white(0.13),
      .windowLine = white(0.13),
      .gleam = rgb(0xF3D9A6),
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
