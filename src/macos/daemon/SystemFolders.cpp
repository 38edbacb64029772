#include "macos/daemon/SystemFolders.h"

#include "macos/daemon/PinnedFolder.h"

#include <string>

namespace vorli::machost {

HelperReply SystemFolders::move(const daemon::MoveOrder& order) {
  const std::lock_guard guard(lock_);
  const auto folder = PinnedFolder::open(std::string(order.folder->path));
  if (!folder) return toReply(folder.error());
  const auto item = folder->pin(order.fromName);
  if (!item) return toReply(item.error());
  if (const auto renamed = folder->rename(order.fromName, order.toName, *item); !renamed)
    return toReply(renamed.error());
  return daemon::answerToMove(folder->flush());
}

}  // namespace vorli::machost
