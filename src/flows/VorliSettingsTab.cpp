#include "flows/VorliSettingsTab.h"

#include <algorithm>
#include <cstddef>

namespace vorli {
namespace {

struct SettingsTabs {
  std::array<SettingsTabTexts, vorliSettingsTabs.size()> texts;

  static const SettingsTabs macOS;
  static const SettingsTabs linuxDesktop;
};

constexpr SettingsTabs tabsFor(std::string_view general) {
  return {{{
      {"general", "General", "gearshape", general},
      {"sneakyApps", "Sneaky Apps", "eyes", "Apps running in the background without you opening them."},
      {"notifications", "Notifications", "bell", "When and how Vorli taps you on the shoulder."},
      {"screen", "Screen", "display", "Ambient cues that live on the screen itself."},
      {"community", "Community", "bubble.left", "Places Vorli lives outside this window."},
      {"about", "About", "info.circle", "Version, updates, and the small print."},
  }}};
}

constexpr SettingsTabs SettingsTabs::macOS = tabsFor("How Vorli behaves on your Mac.");
constexpr SettingsTabs SettingsTabs::linuxDesktop = tabsFor("How Vorli behaves on your computer.");

}  // namespace

std::string SettingsTabTexts::accessibilityLabel() const {
  return std::string(label) + " tab";
}

std::string SettingsTabTexts::accessibilityHint() const {
  return "Switches to the " + std::string(label) + " settings";
}

const SettingsTabTexts& textsOf(VorliSettingsTab tab, HostSystem system) {
  return ofSystem<SettingsTabs>(system).texts.at(static_cast<std::size_t>(tab));
}

std::optional<VorliSettingsTab> settingsTabNamed(std::string_view rawName) {
  const auto found = std::ranges::find(vorliSettingsTabs, rawName,
                                       [](VorliSettingsTab tab) { return textsOf(tab).rawName; });
  if (found == vorliSettingsTabs.end()) return std::nullopt;
  return *found;
}

}  // namespace vorli
