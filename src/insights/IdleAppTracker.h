#pragma once

#include "base/Date.h"
#include "base/Published.h"
#include "base/Scheduler.h"
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

/// A running application that has not been in front for a while.
struct IdleApp {
  std::int32_t id = 0;  // the process identifier
  std::int32_t pid = 0;
  SharedText bundleIdentifier;
  SharedText displayName;
  std::optional<ports::ApplicationIcon> icon = {};
  Date lastActivated;
  double idleFor = 0.0;  // seconds; enormous when no activation is known

  bool operator==(const IdleApp&) const = default;
};

/// Remembers across launches when each application last came to the front or was started, and lists the idle
/// ones. Keeps the 200 newest entries. Events in the last 30 seconds before the program ends are lost. Main
/// thread.
class IdleAppTracker {
 public:
  using ActivationMap = std::map<std::string, Date, std::less<>>;  // by bundle identifier

  /// A running application without a stored activation counts as active now.
  IdleAppTracker(Scheduler& scheduler, const ports::CalendarClock& calendar, ports::KeyValueStore& defaults,
                 ports::Workspace& workspace);

  Published<ActivationMap, IdleAppTracker> activationMap;

  /// Regular background applications without an activation in the last `thresholdMinutes`, longest idle
  /// first. Empty where windows are not visible to the program, because activations are not reported there.
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
