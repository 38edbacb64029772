#pragma once

#include "base/Date.h"
#include "settings/Setting.h"

#include <cstdint>
#include <optional>
#include <string>

namespace vorli {

/// The user's preferences, one line each. Main thread.
class AppSettings {
 public:
  explicit AppSettings(ports::KeyValueStore& defaults) : defaults_(defaults) {}

 private:
  ports::KeyValueStore& defaults_;  // before the settings, which load from it

 public:
  Setting<bool> autoClear{defaults_, "autoClear", false};
  Setting<bool> gentleNudges{defaults_, "gentleNudges", false};
  Setting<bool> quietDuringFocus{defaults_, "quietDuringFocus", true};
  Setting<bool> hapticFeedback{defaults_, "hapticFeedback", true};
  Setting<bool> edgeGlow{defaults_, "edgeGlow", false};
  Setting<bool> autoRefreshOnPressure{defaults_, "autoRefreshOnPressure", false};
  Setting<std::int64_t> idleThresholdMinutes{defaults_, "idleThresholdMinutes", 60};
  Setting<std::string> globalHotkeyCombo{defaults_, "globalHotkeyCombo", "opt+shift+C"};
  Setting<bool> launchAtLogin{defaults_, "launchAtLogin", false};
  Setting<bool> quitHiddenAppsOnClear{defaults_, "quitHiddenAppsOnClear", false};
  /// The panel that the dial is drawn for: "light", "dark", or anything else for the one that the desktop
  /// reports.
  Setting<std::string> dialPanel{defaults_, "dialPanel", "auto"};

  /// Start of the last automatic polish. Empty when there was none, or when the stored value is not a date.
  /// Cannot be observed; each access reads or writes the store.
  std::optional<Date> lastAutoRefresh() const;
  void setLastAutoRefresh(std::optional<Date> value);
};

}  // namespace vorli
