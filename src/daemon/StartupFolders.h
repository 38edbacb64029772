#pragma once

#include "contract/ExitCode.h"
#include "contract/HelperProtocol.h"
#include "daemon/MoveOrder.h"
#include "daemon/SystemError.h"

#include <expected>

namespace vorli::daemon {

/// The answer to a move that is done; `flushed` says whether the disk has it. The item is moved in any case,
/// even if the move may not survive a loss of power.
inline HelperReply answerToMove(const std::expected<void, SystemError>& flushed) {
  if (flushed) return {helper::exit_code::done, "Moved"};
  return {helper::exit_code::done, "Moved, but not safely on disk: " + flushed.error().text};
}

/// Carries out renames in the system's startup folders.
class StartupFolders {
 public:
  virtual ~StartupFolders() = default;

  /// Performs the whole move or none of it. Refuses to move a file away if its absence would start something
  /// else, and to bring a unit back over a definition that has taken its place. Does not follow links. Blocks
  /// for a write to disk; call on a worker.
  virtual HelperReply move(const MoveOrder& order) = 0;
};

}  // namespace vorli::daemon
