#pragma once

#include "base/Date.h"

#include <optional>
#include <string>
#include <variant>

namespace vorli {

/// The one action that can be undone.
struct UndoAction {
  enum class Kind { paused, removed };

  Kind kind = Kind::paused;
  std::string itemID;
  std::string displayName;
  Date createdAt;
  /// Former path of the item's file; empty for a pause.
  std::optional<std::string> removedFromURL;

  bool operator==(const UndoAction&) const = default;
};

/// Reason why an item could not be changed or quit.
struct HelperUnavailable {
  enum class Reason {
    notApproved,  // the user is being asked
    declined,     // the user was asked for the password and did not enter it
    notResponding,
    closedByHand,  // its application cannot be asked to quit
  };

  std::string displayName;
  Date shownAt;
  Reason reason = Reason::notApproved;

  bool operator==(const HelperUnavailable&) const = default;
};

/// Results of a scan.
namespace btm_status {
struct Loaded {
  int itemCount = 0;
  bool operator==(const Loaded&) const = default;
};
struct HelperFailed {
  std::string text;
  bool operator==(const HelperFailed&) const = default;
};
struct Unknown {
  bool operator==(const Unknown&) const = default;
};
struct HelperNotEnabled {
  bool operator==(const HelperNotEnabled&) const = default;
};
struct HelperTimedOut {
  bool operator==(const HelperTimedOut&) const = default;
};
}  // namespace btm_status

/// A scan reads the store itself, so it always ends in `Loaded`.
using BTMStatus = std::variant<btm_status::Loaded, btm_status::HelperFailed, btm_status::Unknown,
                               btm_status::HelperNotEnabled, btm_status::HelperTimedOut>;

}  // namespace vorli
