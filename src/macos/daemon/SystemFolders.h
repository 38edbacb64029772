#pragma once

#include "daemon/StartupFolders.h"

#include <mutex>

namespace vorli::machost {

/// The system's launch folders. A property list is only renamed, and launchd is not asked to load or unload
/// it: the new name counts from the next start of the system or login.
class SystemFolders final : public daemon::StartupFolders {
 public:
  HelperReply move(const daemon::MoveOrder& order) override;

 private:
  /// Allows one move at a time: two moves of the same item would each take the other for an intruder.
  std::mutex lock_;
};

}  // namespace vorli::machost
