#pragma once

#include <string_view>

namespace vorli {

/// Texts of the settings that differ from system to system.
struct SettingsTexts {
  std::string_view autoPolish;
  std::string_view gentleNudges;
  std::string_view quietTitle;
  std::string_view quiet;
  std::string_view edgeGlow;
  // Empty on a system where the program always sees the windows, and always knows what is behind the dial.
  std::string_view hiddenAppsUnknown;
  std::string_view dialPanelTitle;
  std::string_view dialPanel;
  // Empty on a system that registers a key without asking anybody.
  std::string_view hotkeyDeclined;
  std::string_view requiresApproval;
  std::string_view notFound;

  static const SettingsTexts macOS;
  static const SettingsTexts linuxDesktop;
};

}  // namespace vorli
