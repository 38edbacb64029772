#pragma once

#include "daemon/StartupFolders.h"
#include "linux/daemon/PinnedFolder.h"

#include <mutex>
#include <string>

namespace vorli::linuxhost {

/// The system's startup folders. A unit is only renamed. A desktop entry gets pause marks when it is put away
/// and loses them when it is brought back. At every moment exactly one complete entry is visible, and a
/// daemon killed at any moment leaves the entry either enabled as before or disabled.
class SystemFolders final : public daemon::StartupFolders {
 public:
  HelperReply move(const daemon::MoveOrder& order) override;

 private:
  [[nodiscard]] Attempt<void> putAway(const PinnedFolder& folder, const daemon::MoveOrder& order) const;
  [[nodiscard]] Attempt<void> bringBack(const PinnedFolder& folder, const daemon::MoveOrder& order) const;
  [[nodiscard]] Attempt<void> finishBringingBack(const PinnedFolder& folder, const std::string& name) const;

  /// Allows one move at a time: two moves of the same item would share its temporary file.
  std::mutex lock_;
};

}  // namespace vorli::linuxhost
