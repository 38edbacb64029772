#pragma once

#include "base/Date.h"
#include "base/Observable.h"
#include "base/SharedInstance.h"
#include "ports/KeyValueStore.h"

#include <cstdint>
#include <optional>
#include <string>

namespace vorli {

/// The user's preferences: loaded once, each exposed as an observable value, each change written straight
/// back. A change made by another process is not noticed. Main thread.
class AppSettings : public SharedInstance<AppSettings> {
 public:
  explicit AppSettings(ports::KeyValueStore& defaults);

  const Observable<bool>& autoClear() const { return autoClear_; }
  const Observable<bool>& gentleNudges() const { return gentleNudges_; }
  const Observable<bool>& quietDuringFocus() const { return quietDuringFocus_; }
  const Observable<bool>& hapticFeedback() const { return hapticFeedback_; }
  const Observable<bool>& edgeGlow() const { return edgeGlow_; }
  const Observable<bool>& autoRefreshOnPressure() const { return autoRefreshOnPressure_; }
  const Observable<std::int64_t>& idleThresholdMinutes() const { return idleThresholdMinutes_; }
  const Observable<std::string>& globalHotkeyCombo() const { return globalHotkeyCombo_; }
  const Observable<bool>& launchAtLogin() const { return launchAtLogin_; }
  const Observable<bool>& quitHiddenAppsOnClear() const { return quitHiddenAppsOnClear_; }

  // Each setter tells the observers first and writes what then stands in the property.
  void setAutoClear(bool value);
  void setGentleNudges(bool value);
  void setQuietDuringFocus(bool value);
  void setHapticFeedback(bool value);
  void setEdgeGlow(bool value);
  void setAutoRefreshOnPressure(bool value);
  void setIdleThresholdMinutes(std::int64_t value);
  void setGlobalHotkeyCombo(const std::string& value);
  void setLaunchAtLogin(bool value);
  void setQuitHiddenAppsOnClear(bool value);

  /// When the last automatic polish began. Empty when there was none, or when something else than a date is
  /// stored. Not observable: read from and written to the store on each access.
  std::optional<Date> lastAutoRefresh() const;
  void setLastAutoRefresh(std::optional<Date> value);

 private:
  template <typename T>
  void assign(Observable<T>& property, T value, const char* key);

  ports::KeyValueStore& defaults_;
  Observable<bool> autoClear_;
  Observable<bool> gentleNudges_;
  Observable<bool> quietDuringFocus_;
  Observable<bool> hapticFeedback_;
  Observable<bool> edgeGlow_;
  Observable<bool> autoRefreshOnPressure_;
  Observable<std::int64_t> idleThresholdMinutes_;
  Observable<std::string> globalHotkeyCombo_;
  Observable<bool> launchAtLogin_;
  Observable<bool> quitHiddenAppsOnClear_;
};

}  // namespace vorli
