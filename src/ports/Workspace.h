#pragma once

#include "base/Date.h"
#include "base/SharedText.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace vorli::ports {

/// How an application shows itself: as a full one, as one in the tray or menu bar only, or not at all.
enum class ActivationPolicy { regular, accessory, prohibited };

/// Names a picture of an application; it is loaded only when a view draws it. Empty: the application has
/// none.
struct ApplicationIcon {
  SharedText name;
  bool operator==(const ApplicationIcon&) const = default;
};

/// One running application.
struct RunningApplication {
  std::int32_t processIdentifier = 0;
  std::optional<SharedText> localizedName;
  std::optional<SharedText> bundleIdentifier;
  ActivationPolicy activationPolicy = ActivationPolicy::regular;
  ApplicationIcon icon;
};

/// The desktop's idea of which applications run. Main thread; never blocks on the display or a bus.
class Workspace {
 public:
  virtual ~Workspace() = default;

  /// All running applications; empty where the system cannot tell.
  virtual std::vector<RunningApplication> runningApplications() = 0;
};

}  // namespace vorli::ports
