#include "linux/daemon/SystemFolders.h"

#include "daemon/SystemError.h"
#include "formats/PauseMarks.h"
#include "linux/daemon/OtherDefinition.h"

#include <cerrno>
#include <string>
#include <utility>

namespace vorli::linuxhost {

namespace {

bool isOfUnits(const daemon::MoveOrder& order) {
  return order.folder->suffixes.data() != helper::desktopEntrySuffixes.data();
}

}  // namespace

HelperReply SystemFolders::move(const daemon::MoveOrder& order) {
  const std::lock_guard guard(lock_);
  const auto folder = PinnedFolder::open(std::string(order.folder->path));
  if (!folder) return toReply(folder.error());
  folder->sweep();

  const bool isPuttingAway = order.direction == daemon::MoveOrder::Direction::putAway;
  const auto moved = isPuttingAway ? putAway(*folder, order) : bringBack(*folder, order);
  if (!moved) return toReply(moved.error());
  return daemon::answerToMove(folder->flush());
}

// Marks the entry under its own name first: if the daemon is killed before the rename, the entry is already
// disabled where it is.
Attempt<void> SystemFolders::putAway(const PinnedFolder& folder, const daemon::MoveOrder& order) const {
  if (isOfUnits(order) && folder.isMask(order.fromName))
    return daemon::refused("It is a mask: without it, what it masks could start");
  const auto item = folder.pin(order.fromName);
  if (!item) return std::unexpected(item.error());
  if (folder.contains(order.toName)) return std::unexpected(daemon::systemError(EEXIST));
  if (const auto other = otherDefinitionOf(*order.folder, order.fromName))
    return daemon::refused("Without it, " + *other + " would start in its place");
  if (isOfUnits(order)) return folder.rename(order.fromName, order.toName, *item);

  const auto content = contentOf(*item);
  if (!content) return std::unexpected(content.error());
  const auto marked = formats::withPauseMarks(*content, creationTimeOf(*item));
  if (!marked) return folder.rename(order.fromName, order.toName, *item);

  const auto temporary = PinnedFolder::temporaryName(order.fromName, *item);
  if (const auto written = folder.write(temporary, *marked, *item); !written) return written;
  const auto replacement = folder.pin(temporary);
  if (!replacement) return std::unexpected(replacement.error());
  auto moved = folder.exchange(temporary, order.fromName, *item);
  if (moved) {
    moved = folder.rename(order.fromName, order.toName, *replacement);
    if (!moved) (void)folder.exchange(temporary, order.fromName, *replacement);
  }
  folder.remove(temporary);
  return moved;
}

// Renames the entry before its marks are removed: if the daemon is killed in between, the entry is still
// disabled, and the next attempt finishes the work.
Attempt<void> SystemFolders::bringBack(const PinnedFolder& folder, const daemon::MoveOrder& order) const {
  const auto item = folder.pin(order.fromName);
  const bool isDesktopEntry = !isOfUnits(order);
  if (!item && item.error().code == ENOENT && isDesktopEntry) return finishBringingBack(folder, order.toName);
  if (!item) return std::unexpected(item.error());
  // A definition that came while the unit was away may be a mask, or be stricter.
  if (const auto other = isDesktopEntry ? std::nullopt : otherDefinitionOf(*order.folder, order.toName))
    return daemon::refused("It would take the place of " + *other);

  if (const auto renamed = folder.rename(order.fromName, order.toName, *item); !renamed) return renamed;
  if (!isDesktopEntry) return {};
  const auto content = contentOf(*item);
  if (content && !formats::hasPauseMarks(*content)) return {};
  auto finished = finishBringingBack(folder, order.toName);
  if (!finished) (void)folder.rename(order.toName, order.fromName, *item);
  return finished;
}

Attempt<void> SystemFolders::finishBringingBack(const PinnedFolder& folder, const std::string& name) const {
  const auto item = folder.pin(name);
  if (!item) return std::unexpected(item.error());
  const auto content = contentOf(*item);
  if (!content) return std::unexpected(content.error());
  const auto plain = formats::withoutPauseMarks(*content);
  if (!plain) return std::unexpected(daemon::systemError(ENOENT));

  const auto temporary = PinnedFolder::temporaryName(name, *item);
  if (const auto written = folder.write(temporary, *plain, *item); !written) return written;
  auto exchanged = folder.exchange(temporary, name, *item);
  folder.remove(temporary);
  return exchanged;
}

}  // namespace vorli::linuxhost
