#include "ui/popover/VorliTheme.h"

#include "ambient/Palette.h"

#include <algorithm>

namespace vorli::ui {
namespace {

constexpr double plateOpacity = 0.16;

double luma(const Colour& colour) {
  return 0.299 * colour.red + 0.587 * colour.green + 0.114 * colour.blue;
}

}  // namespace

Colour VorliTheme::cardTop() const {
  return isDark ? Colour{0.161, 0.153, 0.145} : Colour{0.992, 0.984, 0.969};
}
Colour VorliTheme::cardBottom() const {
  return isDark ? Colour{0.114, 0.110, 0.106} : Colour{0.969, 0.953, 0.929};
}
Colour VorliTheme::headline() const {
  return isDark ? Colour{0.949, 0.941, 0.925} : palette::ink;
}
Colour VorliTheme::aside() const {
  return isDark ? Colour{0.80, 0.788, 0.765} : palette::secondaryInk;
}
Colour VorliTheme::polishReady() const {
  return isDark ? Colour{0.965, 0.957, 0.941} : palette::ink;
}
Colour VorliTheme::polishResting() const {
  return isDark ? Colour{0.843, 0.835, 0.816} : Colour{0.38, 0.373, 0.369};
}
Colour VorliTheme::culpritText() const {
  return isDark ? palette::white.withAlpha(0.66) : palette::secondaryInk;
}
Colour VorliTheme::chip() const {
  return isDark ? Colour{0.91, 0.875, 0.816} : Colour{0.227, 0.184, 0.141};
}
Colour VorliTheme::chipHovered() const {
  return isDark ? Colour{0.949, 0.949, 0.969} : palette::ink;
}
Colour VorliTheme::chipPlate() const {
  return chip().withAlpha(plateOpacity);
}
Colour VorliTheme::banner() const {
  return isDark ? palette::teal : Colour{0.184, 0.396, 0.38};
}
Colour VorliTheme::link() const {
  return isDark ? palette::teal : Colour{0.196, 0.408, 0.392};
}
Colour VorliTheme::linkHovered() const {
  return isDark ? Colour{0.64, 0.90, 0.885} : Colour{0.141, 0.329, 0.318};
}
Colour VorliTheme::accent() const {
  return isDark ? palette::teal : palette::calmForLight;
}

Colour VorliTheme::ringInk(const Colour& stateColor) const {
  if (isDark) return blend(stateColor, palette::white, 0.75 * std::max(0.0, 0.44 - luma(stateColor)));
  const double factor = 1.0 - std::max(0.0, luma(stateColor) - 0.42);
  return {stateColor.red * factor, stateColor.green * factor, stateColor.blue * factor, 1.0};
}

}  // namespace vorli::ui
