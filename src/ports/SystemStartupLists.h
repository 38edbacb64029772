#pragma once

#include <optional>
#include <string>
#include <vector>

namespace vorli::ports {

/// A sandboxed application that asked to run in the background.
struct BackgroundPermission {
  std::string applicationIdentifier;
  bool isAllowed = false;

  bool operator==(const BackgroundPermission&) const = default;
};

/// An application, with the helpers inside it, in the system's store of background items. URLs are paths.
struct BackgroundContainer {
  std::optional<std::string> appURL;
  bool isEnabled = true;
  std::vector<std::string> internalURLs;

  bool operator==(const BackgroundContainer&) const = default;
};

/// Startup items that the system keeps in its own lists, and which only its own tools change. Any thread, one
/// at a time; each call blocks until the system has answered, at most 10 seconds.
class SystemStartupLists {
 public:
  virtual ~SystemStartupLists() = default;

  /// The user's table of timed commands. Empty when there is none or it cannot be read.
  virtual std::optional<std::string> crontab() = 0;

  /// Empty where the system keeps no such list.
  virtual std::vector<BackgroundPermission> backgroundPermissions() = 0;

  /// Reads the store of background items at the path with the system's own reader; no order. Nothing where
  /// the system has no such reader, and no containers when it cannot read the store. Blocks until it has
  /// looked for the files that the store names.
  virtual std::optional<std::vector<BackgroundContainer>> backgroundContainers(const std::string& store) = 0;
};

}  // namespace vorli::ports
