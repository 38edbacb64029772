#include "ui/WindowPalette.h"

#include <QLinearGradient>

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
QColor black(double alpha) {
  return rgba(0, 0, 0, alpha);
}
QColor white(double alpha) {
  return rgba(255, 255, 255, alpha);
}

WindowPalette makeLight() {
  return {
      .surface = rgb(0xFCF9F2),
      .ink = rgb(0x1A1A1C),
      .ink2 = rgb(0x4A4A4E),
      .meta = rgb(0x656463),
      .accent = rgb(0x3D7672),
      .accentInk = rgb(0x2F625E),
      .card = {rgb(0xFFFDF7), rgb(0xF7F3EA)},
      .border = black(0.07),
      .divider = black(0.05),
      .lip = white(0.90),
      .wash = rgba(140, 110, 70, 0.14),
      .wash2 = rgba(140, 110, 70, 0.07),
      .calmWash = rgba(94, 184, 176, 0.17),
      .calmLine = rgba(61, 118, 114, 0.18),
      .primary = {rgb(0x467F7B), rgb(0x376C68)},
      .primaryText = rgb(0xFFFDF7),
      .primaryLine = black(0.12),
      .primaryLip = white(0.28),
      .pill = {rgb(0xFFFFFF), rgb(0xF8F4EB)},
      .pillLine = black(0.11),
      .offLine = rgb(0x85827D),
      .knob = {rgb(0xFFFFFF), rgb(0xF3EFE6)},
      .amber = rgb(0xE4A458),
      .warn = rgb(0xB0782F),
      .amberInk = rgb(0x855A1B),
      .amberWash = rgba(228, 164, 88, 0.17),
      .amberLine = rgba(181, 126, 54, 0.26),
      .red = rgb(0xE46454),
      .redInk = rgb(0x9C3327),
      .redWash = rgba(228, 100, 84, 0.12),
      .redLine = rgba(228, 100, 84, 0.28),
      .green = rgb(0x3C9A68),
      .idle = rgb(0xA8A49C),
      .field = rgb(0xFFFFFF),
      .fieldLine = black(0.10),
      .toast = {rgb(0xFFFFFF), rgb(0xFBF8F1)},
      .toastLine = black(0.08),
      .windowLine = rgba(70, 52, 25, 0.20),
      .gleam = rgb(0xC08A3E),
      .scroll = rgba(26, 26, 28, 0.20),
      .tealBloom = rgba(126, 209, 205, 0.10),
      .amberBloom = rgba(228, 164, 88, 0.10),
      .letterpress = white(0.85),
      .letterpressOffset = 1.0,
      .mark = {rgb(0xFFFEFA), rgb(0xEDE4D3)},
      .markLine = rgba(90, 65, 25, 0.16),
      .markFirstTick = rgb(0x8CCBC6),
      .markLastTick = rgb(0x3D7672),
  };
}

WindowPalette makeDark() {
  return {
      .surface = rgb(0x171715),
      .ink = rgb(0xF1EFE9),
      .ink2 = rgb(0xC6C3BC),
      .meta = rgb(0xA09E9A),
      .accent = rgb(0x7ED1CD),
      .accentInk = rgb(0x7ED1CD),
      .card = {white(0.045), white(0.022)},
      .border = white(0.10),
      .divider = white(0.06),
      .lip = white(0.05),
      .wash = white(0.075),
      .wash2 = white(0.045),
      .calmWash = rgba(126, 209, 205, 0.13),
      .calmLine = rgba(126, 209, 205, 0.16),
      .primary = {rgb(0x86C6C2), rgb(0x6CA8A4)},
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
      .amberWash = rgba(228, 164, 88, 0.11),
      .amberLine = rgba(228, 164, 88, 0.24),
      .red = rgb(0xE46454),
      .redInk = rgb(0xF29A8C),
      .redWash = rgba(228, 100, 84, 0.14),
      .redLine = rgba(228, 100, 84, 0.28),
      .green = rgb(0x5ECB88),
      .idle = rgb(0x6E6C68),
      .field = white(0.05),
      .fieldLine = white(0.12),
      .toast = {rgb(0x32322E), rgb(0x2A2A27)},
      .toastLine = white(0.13),
      .windowLine = white(0.13),
      .gleam = rgb(0xF3D9A6),
      .scroll = white(0.22),
      .tealBloom = rgba(126, 209, 205, 0.06),
      .amberBloom = rgba(228, 164, 88, 0.04),
      .letterpress = black(0.75),
      .letterpressOffset = -1.0,
      .mark = {rgb(0x33332F), rgb(0x1E1E1B)},
      .markLine = white(0.13),
      .markFirstTick = rgb(0x4B8A86),
      .markLastTick = rgb(0x8EDCD8),
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
  static const WindowPalette light = makeLight();
  static const WindowPalette dark = makeDark();
  return appearance == Appearance::dark ? dark : light;
}

}  // namespace vorli::ui
