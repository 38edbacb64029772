#include "linux/daemon/SystemFolders.h"

#include "helper/PauseMarks.h"
#include "linux/daemon/LastError.h"

#include <cerrno>

namespace vorli::linuxhost {

namespace {

// Session managers leave out what begins with a dot.
constexpr char temporaryEnding[] = ".vorli-new";

std::string temporaryName(const std::string& name) {
  return "." + name + temporaryEnding;
}

}  // namespace

HelperReply SystemFolders::move(const daemon::MoveOrder& order) {
  const std::lock_guard guard(lock_);
  const auto folder = PinnedFolder::open(std::string(order.folder->path));
  if (!folder) return toReply(folder.error());
  folder->sweep(temporaryEnding);

  const bool isPuttingAway = order.direction == daemon::MoveOrder::Direction::putAway;
  const auto moved = isPuttingAway ? putAway(*folder, order) : bringBack(*folder, order);
  if (!moved) return toReply(moved.error());
  if (const auto flushed = folder->flush(); !flushed) return toReply(flushed.error());
  return {daemon::exit_code::done, "Moved"};
}

// Marked under its own name first: should we be killed before the rename, it is put to rest where it stands.
Attempt<void> SystemFolders::putAway(const PinnedFolder& folder, const daemon::MoveOrder& order) const {
  const auto item = folder.pin(order.fromName);
  if (!item) return std::unexpected(item.error());
  if (folder.contains(order.toName)) return std::unexpected(systemError(EEXIST));
  if (order.folder->suffixes.data() != helper::desktopEntrySuffixes.data())
    return folder.rename(order.fromName, order.toName, *item);

  const auto content = contentOf(*item);
  if (!content) return std::unexpected(content.error());
  const auto marked = helper::withPauseMarks(*content, creationTimeOf(*item));
  if (!marked) return folder.rename(order.fromName, order.toName, *item);

  const auto temporary = temporaryName(order.fromName);
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

// Renamed with its marks on first: should we be killed before they are off, it still rests, and the next try
// finishes the work.
Attempt<void> SystemFolders::bringBack(const PinnedFolder& folder, const daemon::MoveOrder& order) const {
  const auto item = folder.pin(order.fromName);
  const bool isDesktopEntry = order.folder->suffixes.data() == helper::desktopEntrySuffixes.data();
  if (!item && item.error().code == ENOENT && isDesktopEntry) return finishBringingBack(folder, order.toName);
  if (!item) return std::unexpected(item.error());

  if (const auto renamed = folder.rename(order.fromName, order.toName, *item); !renamed) return renamed;
  if (!isDesktopEntry) return {};
  const auto content = contentOf(*item);
  if (content && !helper::hasPauseMarks(*content)) return {};
  auto finished = finishBringingBack(folder, order.toName);
  if (!finished) (void)folder.rename(order.toName, order.fromName, *item);
  return finished;
}

Attempt<void> SystemFolders::finishBringingBack(const PinnedFolder& folder, const std::string& name) const {
  const auto item = folder.pin(name);
  if (!item) return std::unexpected(item.error());
  const auto content = contentOf(*item);
  if (!content) return std::unexpected(content.error());
  const auto plain = helper::withoutPauseMarks(*content);
  if (!plain) return std::unexpected(systemError(ENOENT));

  const auto temporary = temporaryName(name);
  if (const auto written = folder.write(temporary, *plain, *item); !written) return written;
  auto exchanged = folder.exchange(temporary, name, *item);
  folder.remove(temporary);
  return exchanged;
}

}  // namespace vorli::linuxhost
