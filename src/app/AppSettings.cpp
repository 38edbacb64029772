#include "app/AppSettings.h"

#include "app/UserDefaults.h"

namespace vorli {

namespace {

constexpr const char* autoClearKey = "autoClear";
constexpr const char* gentleNudgesKey = "gentleNudges";
constexpr const char* quietDuringFocusKey = "quietDuringFocus";
constexpr const char* hapticFeedbackKey = "hapticFeedback";
constexpr const char* edgeGlowKey = "edgeGlow";
constexpr const char* autoRefreshOnPressureKey = "autoRefreshOnPressure";
constexpr const char* idleThresholdMinutesKey = "idleThresholdMinutes";
constexpr const char* globalHotkeyComboKey = "globalHotkeyCombo";
constexpr const char* launchAtLoginKey = "launchAtLogin";
constexpr const char* quitHiddenAppsOnClearKey = "quitHiddenAppsOnClear";
constexpr const char* lastAutoRefreshKey = "lastAutoRefresh";

constexpr std::int64_t defaultIdleThresholdMinutes = 60;
constexpr const char* defaultHotkeyCombo = "opt+shift+C";

// For a setting that is on unless the user turned it off.
bool boolUnlessAbsent(const ports::KeyValueStore& defaults, const char* key) {
  return !defaults.object(key) || boolForKey(defaults, key);
}

std::int64_t loadIdleThresholdMinutes(const ports::KeyValueStore& defaults) {
  const auto minutes = integerForKey(defaults, idleThresholdMinutesKey);
  return minutes > 0 ? minutes : defaultIdleThresholdMinutes;
}

}  // namespace

AppSettings::AppSettings(ports::KeyValueStore& defaults)
    : defaults_(defaults),
      autoClear_(boolForKey(defaults, autoClearKey)),
      gentleNudges_(boolForKey(defaults, gentleNudgesKey)),
      quietDuringFocus_(boolUnlessAbsent(defaults, quietDuringFocusKey)),
      hapticFeedback_(boolUnlessAbsent(defaults, hapticFeedbackKey)),
      edgeGlow_(boolForKey(defaults, edgeGlowKey)),
      autoRefreshOnPressure_(boolForKey(defaults, autoRefreshOnPressureKey)),
      idleThresholdMinutes_(loadIdleThresholdMinutes(defaults)),
      globalHotkeyCombo_(stringForKey(defaults, globalHotkeyComboKey).value_or(defaultHotkeyCombo)),
      launchAtLogin_(boolForKey(defaults, launchAtLoginKey)),
      quitHiddenAppsOnClear_(boolForKey(defaults, quitHiddenAppsOnClearKey)) {}

template <typename T>
void AppSettings::assign(Observable<T>& property, T value, const char* key) {
  property = std::move(value);
  defaults_.setObject(key, property.get());
}

void AppSettings::setAutoClear(bool value) {
  assign(autoClear_, value, autoClearKey);
}

void AppSettings::setGentleNudges(bool value) {
  assign(gentleNudges_, value, gentleNudgesKey);
}

void AppSettings::setQuietDuringFocus(bool value) {
  assign(quietDuringFocus_, value, quietDuringFocusKey);
}

void AppSettings::setHapticFeedback(bool value) {
  assign(hapticFeedback_, value, hapticFeedbackKey);
}

void AppSettings::setEdgeGlow(bool value) {
  assign(edgeGlow_, value, edgeGlowKey);
}

void AppSettings::setAutoRefreshOnPressure(bool value) {
  assign(autoRefreshOnPressure_, value, autoRefreshOnPressureKey);
}

void AppSettings::setIdleThresholdMinutes(std::int64_t value) {
  assign(idleThresholdMinutes_, value, idleThresholdMinutesKey);
}

void AppSettings::setGlobalHotkeyCombo(const std::string& value) {
  assign(globalHotkeyCombo_, value, globalHotkeyComboKey);
}

void AppSettings::setLaunchAtLogin(bool value) {
  assign(launchAtLogin_, value, launchAtLoginKey);
}

void AppSettings::setQuitHiddenAppsOnClear(bool value) {
  assign(quitHiddenAppsOnClear_, value, quitHiddenAppsOnClearKey);
}

std::optional<Date> AppSettings::lastAutoRefresh() const {
  return dateForKey(defaults_, lastAutoRefreshKey);
}

void AppSettings::setLastAutoRefresh(std::optional<Date> value) {
  std::optional<ports::StoredValue> stored;
  if (value) stored = *value;
  defaults_.setObject(lastAutoRefreshKey, std::move(stored));
}

}  // namespace vorli
