#pragma once

#include "daemon/StartupFolders.h"
#include "linux/daemon/PinnedFolder.h"

#include <mutex>
#include <string>

namespace vorli::linuxhost {

/// The system's startup folders. A unit is renamed and no more. A desktop entry is given its pause marks on
/// the way out and loses them on the way back; at every moment in between it stands there once, whole, and
/// whatever the moment, a killed daemon leaves it either running as before or put to rest.
class SystemFolders final : public daemon::StartupFolders {
 public:
  HelperReply move(const daemon::MoveOrder& order) override;

 private:
  Attempt<void> putAway(const PinnedFolder& folder, const daemon::MoveOrder& order) const;
  Attempt<void> bringBack(const PinnedFolder& folder, const daemon::MoveOrder& order) const;
  Attempt<void> finishBringingBack(const PinnedFolder& folder, const std::string& name) const;

  /// One move at a time: two of the same item would share its temporary file.
  std::mutex lock_;
};

}  // namespace vorli::linuxhost
