#include "flows/VorliSettingsView.h"

#include "base/UnicodeText.h"
#include "settings/VersionText.h"

#include <algorithm>
#include <utility>

namespace vorli {

VorliSettingsView::VorliSettingsView(const SettingsServices& services, HostSystem system)
    : services_(services),
      system_(system),
      texts_(ofSystem<SettingsTexts>(system)),
      hotkeyRow_(services.settings, services.keys),
      tasks_(services.scheduler) {
  const auto follow = [this](const auto& observable) {
    subscriptions_.push_back(observable.subscribeToChanges([this](const auto&) { changed_.deliver(); }));
  };
  follow(services_.helperManager.status);
  follow(services_.helperManager.isInstalling);
  follow(services_.helperManager.isOtherBuildInstalled);
  follow(services_.updaterManager.isConfigured);
  follow(services_.hotkeys.state);
  subscriptions_.push_back(services_.notifications.observe<SwitchVorliSettingsTab>([this](const auto& asked) {
    if (const auto tab = settingsTabNamed(asked.rawName)) selectedTab = *tab;
  }));
}

std::vector<VorliSettingsView::Group> VorliSettingsView::groups(VorliSettingsTab tab) const {
  auto& settings = services_.settings;
  switch (tab) {
    case VorliSettingsTab::general:
      return {
          {"Startup", {{"Launch at login", "Open Vorli when you sign in.", "power", settings.launchAtLogin}}},
          polishGroup(),
          {shortcutGroup, {}},
          {"Feedback",
           {{"Haptic feedback", "A soft tap on every polish.", "hand.tap", settings.hapticFeedback}}},
      };
    case VorliSettingsTab::notifications:
      return {{"Nudges",
               {{"Gentle nudges", texts_.gentleNudges, "bell", settings.gentleNudges},
                {texts_.quietTitle, texts_.quiet, "moon.stars", settings.quietDuringFocus}}}};
    case VorliSettingsTab::screen:
      return screenGroups();
    case VorliSettingsTab::community:
      return {{feedbackGroup, {}}};
    case VorliSettingsTab::about:
      return {{helperGroup, {}}, {updatesGroup, {}}};
    case VorliSettingsTab::sneakyApps:
      return {};
  }
  return {};
}

VorliSettingsView::Group VorliSettingsView::polishGroup() const {
  auto& settings = services_.settings;
  const bool seesWindows = texts_.hiddenAppsUnknown.empty() || services_.workspace.seesEveryWindow();
  return {"Polish",
          {{"Auto‑polish", texts_.autoPolish, "wand.and.stars", settings.autoClear},
           {"Quit hidden apps on Polish",
            seesWindows ? "Asks background apps to quit too." : texts_.hiddenAppsUnknown,
            "rectangle.stack.badge.minus", settings.quitHiddenAppsOnClear, seesWindows}}};
}

std::vector<VorliSettingsView::Group> VorliSettingsView::screenGroups() const {
  auto& settings = services_.settings;
  std::vector<Group> groups{
      {"Edge glow", {{"Soft edge glow", texts_.edgeGlow, "display", settings.edgeGlow}}}};
  if (texts_.dialPanelTitle.empty()) return groups;
  const Choice panel{texts_.dialPanelTitle,
                     texts_.dialPanel,
                     "moon.stars",
                     {{"Auto", "auto"}, {"Light", "light"}, {"Dark", "dark"}},
                     settings.dialPanel};
  groups.push_back({"Dial", {}, {panel}});
  return groups;
}

std::size_t VorliSettingsView::Choice::chosen() const {
  const auto found = std::ranges::find(options, setting().get(), &Option::stored);
  return found == options.end() ? 0 : static_cast<std::size_t>(found - options.begin());
}

bool VorliSettingsView::isHotkeyRefused() const {
  if (hotkeyCombo()->empty()) return false;
  const HotkeyState state = services_.hotkeys.state;
  return state == HotkeyState::notParsed || state == HotkeyState::refused || state == HotkeyState::declined ||
         state == HotkeyState::unavailable;
}

std::string_view VorliSettingsView::hotkeySubtitle() const {
  if (isHotkeyRefused()) {
    const HotkeyState state = services_.hotkeys.state;
    if (state == HotkeyState::refused) return "Another app already uses this one. Press to record another.";
    if (state == HotkeyState::notParsed) return "This one can't be used everywhere. Press to record another.";
    if (state == HotkeyState::declined) return texts_.hotkeyDeclined;
    return "This desktop has no global hotkeys.";
  }
  return "Summon Vorli from any app.";
}

std::string VorliSettingsView::version() const {
  return versionText(services_.bundle);
}

std::string VorliSettingsView::helperText() const {
  const InstallStatus status = services_.helperManager.status;
  switch (status.which()) {
    case Case::unknown:
      return "Status " + lowercased(status.description());
    case Case::notRegistered:
      return "Not installed yet.";
    case Case::requiresApproval:
      return std::string(texts_.requiresApproval);
    case Case::enabled:
      if (services_.helperManager.isOtherBuildInstalled)
        return "This helper is from another build of Vorli. Press Reinstall to replace it.";
      return "Running. Press Reinstall if Vorli is having trouble removing or pausing system items.";
    case Case::notFound:
      return std::string(texts_.notFound);
  }
  return {};
}

VorliSettingsView::HelperRow VorliSettingsView::helperRow() const {
  using Tone = HelperRow::Tone;
  using Button = HelperRow::Button;
  const auto offered = reinstalling_ ? Button::reinstalling : Button::reinstall;
  if (services_.helperManager.isInstalling)
    return {"Setting up the helper…", {}, Tone::plain, reinstalling_ ? Button::reinstalling : Button::none};
  switch (services_.helperManager.status->which()) {
    case Case::requiresApproval:
      return {helperText(), "lock.shield", Tone::amber, Button::none};
    case Case::enabled:
      if (services_.helperManager.isOtherBuildInstalled)
        return {helperText(), updatesSymbol, Tone::amber, offered};
      return {helperText(), "checkmark.seal", Tone::lit, offered};
    case Case::notFound:
      return {helperText(), "box.missing", Tone::red, offered};
    case Case::unknown:
    case Case::notRegistered:
      break;
  }
  return {helperText(), "lock.shield", Tone::plain, Button::none};
}

std::optional<double> VorliSettingsView::spinnerSeconds() const {
  constexpr double stepSeconds = 1.0 / 12.0;
  const HelperRow row = helperRow();
  const bool hasSpinner = row.symbol.empty() || row.button == HelperRow::Button::reinstalling;
  return hasSpinner && !services_.motion.isReduced() ? std::optional(stepSeconds) : std::nullopt;
}

void VorliSettingsView::reinstallHelper() {
  if (reinstalling_) return;
  reinstalling_ = true;
  changed_.deliver();
  tasks_.spawn(reinstall());
}

Task<> VorliSettingsView::reinstall() {
  co_await services_.helperManager.reinstallIfStale(Reinstall::forced);
  reinstalling_ = false;
  changed_.deliver();
}

}  // namespace vorli
