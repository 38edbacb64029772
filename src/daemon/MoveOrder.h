#pragma once

#include "helper/HelperProtocol.h"
#include "helper/SystemStartupFolders.h"

#include <expected>
#include <string>
#include <string_view>

namespace vorli::daemon {

/// One of the four allowed renames, inside one of the allowed folders.
struct MoveOrder {
  enum class Direction { putAway, bringBack };

  /// Points into the constant list.
  const helper::SystemStartupFolder* folder;
  std::string fromName;
  std::string toName;
  Direction direction;

  bool operator==(const MoveOrder&) const = default;
};

/// Judges the two paths by their text alone, without a look at the disk. Error: the answer for the caller.
std::expected<MoveOrder, HelperReply> decodeMove(std::string_view from, std::string_view to);

}  // namespace vorli::daemon
