#pragma once

#include "base/Date.h"
#include "base/Observable.h"
#include "base/Scheduler.h"
#include "base/SharedInstance.h"
#include "base/SharedText.h"
#include "base/Subscription.h"
#include "base/TaskScope.h"
#include "ports/CalendarClock.h"
#include "ports/KeyValueStore.h"
#include "ports/Workspace.h"

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace vorli {

/// One running application that has not come to the front for a while.
struct IdleApp {
  std::int32_t id = 0;  // the process identifier
  std::int32_t pid = 0;
  SharedText bundleIdentifier;
  SharedText displayName;
  std::optional<ports::ApplicationIcon> icon = {};
  Date lastActivated;
  double idleFor = 0.0;  // seconds; enormous when nobody knows of an activation

  bool operator==(const IdleApp&) const = default;
};

/// Remembers across launches when each application last came to the front or was started, the 200 newest of
/// them, and names those that have not for a while. What happens in the last 30 seconds before the program
/// ends is not remembered. Main thread.
class IdleAppTracker : public SharedInstance<IdleAppTracker> {
 public:
  using ActivationMap = std::map<std::string, Date, std::less<>>;  // by bundle identifier

  /// What runs now counts as active now where nothing older is known.
  IdleAppTracker(Scheduler& scheduler, const ports::CalendarClock& calendar, ports::KeyValueStore& defaults,
                 ports::Workspace& workspace);

  Observable<ActivationMap> activationMap;

  /// The full applications in the background without an activation since so many minutes, the longest idle
  /// first. None where windows cannot be seen: there nothing tells of activations.
  std::vector<IdleApp> idleApps(std::int64_t thresholdMinutes);

 private:
  void load();
  void seed();
  void record(const ports::RunningApplication& application);
  void publish(ActivationMap map);
  void scheduleSave();
  Task<> saveLater();
  bool seesActivations();
  std::optional<Date> lastActivation(const ports::RunningApplication& application) const;

  Scheduler& scheduler_;
  const ports::CalendarClock& calendar_;
  ports::KeyValueStore& defaults_;
  ports::Workspace& workspace_;
  bool toldOfBlindness_ = false;
  std::vector<Subscription> observers_;
  TaskHandle saveDebounce_;
  TaskScope tasks_;
};

}  // namespace vorli
