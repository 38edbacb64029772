#pragma once

#include "daemon/MoveOrder.h"
#include "helper/HelperProtocol.h"

namespace vorli::daemon {

/// Carries out renames in the system's startup folders.
class StartupFolders {
 public:
  virtual ~StartupFolders() = default;

  /// Either the whole move or none of it. Follows no link. Blocks for a write to disk: a worker's thread.
  virtual HelperReply move(const MoveOrder& order) = 0;
};

}  // namespace vorli::daemon
