#pragma once

#include "base/HostSystem.h"

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace vorli {

enum class VorliSettingsTab { general, sneakyApps, notifications, screen, community, about };

/// All tabs, in the order of the list.
inline constexpr std::array vorliSettingsTabs{
    VorliSettingsTab::general, VorliSettingsTab::sneakyApps, VorliSettingsTab::notifications,
    VorliSettingsTab::screen,  VorliSettingsTab::community,  VorliSettingsTab::about,
};

/// Texts and symbol of a tab.
struct SettingsTabTexts {
  std::string_view rawName;  // in notifications
  std::string_view label;
  std::string_view symbol;
  std::string_view subtitle;

  std::string accessibilityLabel() const;
  std::string accessibilityHint() const;
};

const SettingsTabTexts& textsOf(VorliSettingsTab tab, HostSystem system = hostSystem);

/// Returns the tab with this raw name; empty when there is none.
std::optional<VorliSettingsTab> settingsTabNamed(std::string_view rawName);

/// Notification that asks an open window to change its tab.
struct SwitchVorliSettingsTab {
  std::string rawName;
};

}  // namespace vorli
