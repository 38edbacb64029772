#pragma once

#include "base/HostSystem.h"
#include "contract/HelperProtocol.h"
#include "contract/SystemStartupFolders.h"

#include <expected>
#include <string>
#include <string_view>

namespace vorli::daemon {

/// One of the four allowed renames, inside one of the allowed folders.
struct MoveOrder {
  enum class Direction { putAway, bringBack };

  /// Points into the constant list of folders.
  const helper::SystemStartupFolder* folder;
  std::string fromName;
  std::string toName;
  Direction direction;

  bool operator==(const MoveOrder&) const = default;
};

/// Checks the two paths by their text alone, without access to the disk. `system` decides which folders are
/// allowed. Error: the answer for the caller.
[[nodiscard]] std::expected<MoveOrder, HelperReply> decodeMove(std::string_view from, std::string_view to,
                                                               HostSystem system = hostSystem);

}  // namespace vorli::daemon
