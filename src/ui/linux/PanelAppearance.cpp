#include "ui/linux/PanelAppearance.h"

#include <QStringList>
#include <array>
#include <cstdint>
#include <cstring>

namespace vorli::ui {

PanelAppearance::PanelAppearance(ManagerSelections& selections, DesktopAppearance& desktop,
                                 QString currentDesktop)
    : selections_(selections),
      desktop_(desktop),
      alwaysDark_(currentDesktop.split(QLatin1Char(':')).contains(QLatin1String("GNOME"))),
      colours_(selections_.subscribe([this] { changed_.deliver(); })),
      windows_(desktop_.subscribe([this] { changed_.deliver(); })) {}

bool PanelAppearance::isDark() const {
  const auto lightForeground =
      hasLightForeground(selections_.published(ManagerSelections::Selection::systemTray));
  if (lightForeground) return *lightForeground;
  return alwaysDark_ || desktop_.isDark();
}

std::optional<bool> hasLightForeground(const QByteArray& trayColours) {
  // Red, green and blue of foreground, error, warning and success, each a 16-bit value in 32 bits.
  std::array<std::uint32_t, 12> components;
  if (trayColours.size() != static_cast<qsizetype>(sizeof components)) return std::nullopt;
  std::memcpy(components.data(), trayColours.constData(), sizeof components);
  const double luma = 0.299 * components[0] + 0.587 * components[1] + 0.114 * components[2];
  return luma > 32767.5;
}

}  // namespace vorli::ui
