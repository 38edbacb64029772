#include "startup/AutostartControls.h"

#include "base/FilePath.h"
#include "contract/SystemStartupFolders.h"
#include "formats/AutostartEntry.h"
#include "formats/PauseMarks.h"
#include "startup/AutostartOverride.h"
#include "startup/EarlierFiles.h"

#include <cstdint>
#include <utility>

namespace vorli {

namespace {

// The work is done by functions of ports and values alone: it runs on the second thread and may outlive the
// control.

constexpr auto largestEntry = AutostartEntries::largestEntry;

bool isPausedHere(ports::StartupFiles& files, const std::string& path) {
  const auto text = files.read(path, largestEntry);
  return text && formats::hasPauseMarks(*text);
}

// Names of files that must come back unchanged. They begin with a dot, so that no session reads them.
constexpr std::string_view pausedLink = ".vorli-link";
constexpr std::string_view keptOriginal = ".vorli-original";
std::string asideName(const std::string& path, std::string_view extension) {
  return std::string(parentPath(path)) + "/." + withExtension(fileName(path), extension);
}

// Deletes the original once no marked entry is left that it could replace.
void forgetOriginal(ports::StartupFiles& files, const std::string& path) {
  for (const auto extension : {std::string_view(), helper::disabledExtension, helper::removedExtension})
    if (isPausedHere(files, withExtension(path, extension))) return;
  files.remove(asideName(path, keptOriginal));
}

// The original is kept beside the marked entry: a rewritten file would have a new creation time and be shown
// as new. False when the entry cannot be marked: it is marked already, or it is a link, whose target this
// program must not change.
bool mark(ports::StartupFiles& files, const std::string& path) {
  const auto text = files.read(path, largestEntry);
  if (!text) return false;
  const auto birth = files.birthTime(path);
  const auto seconds =
      birth ? std::optional(static_cast<std::int64_t>(birth->secondsSince1970)) : std::nullopt;
  const auto marked = formats::withPauseMarks(*text, seconds);
  if (!marked) return false;
  forgetOriginal(files, path);
  return files.setAside(path, *text, *marked, asideName(path, keptOriginal)) ||
         files.rewrite(path, *text, *marked);
}

// Removes the marks. An entry that somebody changed while it was paused keeps the change.
void unmark(ports::StartupFiles& files, const std::string& path) {
  const auto text = files.read(path, largestEntry);
  const auto plain = text ? formats::withoutPauseMarks(*text) : std::nullopt;
  if (!plain) return;
  const auto kept = asideName(path, keptOriginal);
  if (files.read(kept, largestEntry) == plain && files.putBack(path, *text, kept)) return;
  if (files.rewrite(path, *text, *plain)) forgetOriginal(files, path);
}

// Marks a copy that this program made and may delete. An entry that somebody put in its place lacks it.
constexpr std::string_view copyMark = "X-Vorli-Copy=true\n";

std::optional<std::string> markedCopy(const std::string& text) {
  const auto body = formats::pause_marks::bodyOffset(text);
  if (!body || formats::hasPauseMarks(text)) return std::nullopt;
  auto copy = text;
  copy.insert(*body, copyMark);
  return formats::withPauseMarks(copy, std::nullopt);
}

bool isCopy(ports::StartupFiles& files, const std::string& path) {
  const auto text = files.read(path, largestEntry);
  const auto plain = text ? formats::withoutPauseMarks(*text) : std::nullopt;
  const auto body = plain ? formats::pause_marks::bodyOffset(*plain) : std::nullopt;
  return body && plain->substr(*body).starts_with(copyMark);
}

// Deletes what an earlier pause left behind if the link was made again meanwhile.
void forgetEarlierPause(ports::StartupFiles& files, const std::string& path, const std::string& copy) {
  const auto aside = asideName(path, pausedLink);
  if (files.linkTarget(aside) == files.linkTarget(path)) files.remove(aside);
  if (isCopy(files, copy)) files.remove(copy);
}

// Replaces the link by a marked copy, because the file that it leads to must not change.
void pauseLink(ports::StartupFiles& files, const AutostartFolders& folders, const std::string& path) {
  const auto text = files.read(path, largestEntry);
  const auto marked = text ? markedCopy(*text) : std::nullopt;
  if (!marked) return;
  const bool isOverride = systemEntry(files, folders, fileName(path)).has_value();
  const auto copy = withExtension(path, helper::disabledExtension);
  forgetEarlierPause(files, path, copy);
  if (!files.create(copy, *marked)) return;
  if (files.moveWithoutReplacing(path, asideName(path, pausedLink)) != ports::MoveResult::moved) {
    files.remove(copy);
  } else if (isOverride) {
    files.moveWithoutReplacing(copy, path);
  }
}

// Does not touch an entry that somebody put in the link's place.
ports::MoveResult resumeLink(ports::StartupFiles& files, const std::string& path) {
  if (isCopy(files, path)) files.remove(path);
  const auto moved = files.moveWithoutReplacing(asideName(path, pausedLink), path);
  const auto copy = withExtension(path, helper::disabledExtension);
  if (moved == ports::MoveResult::moved && isCopy(files, copy)) files.remove(copy);
  return moved;
}

void pause(ports::StartupFiles& files, const AutostartFolders& folders, const std::string& path) {
  if (files.linkTarget(path)) return pauseLink(files, folders, path);
  if (!mark(files, path) && !isPausedHere(files, path)) return;
  if (systemEntry(files, folders, fileName(path))) return;
  files.moveWithoutReplacing(path, withExtension(path, helper::disabledExtension));
}

// Undoes a change of the desktop's own settings: a hidden entry, or a stub or mask over the system's.
void switchOn(ports::StartupFiles& files, const AutostartFolders& folders, const std::string& path) {
  const auto text = files.linkTarget(path) == "/dev/null" ? "" : files.read(path, largestEntry);
  if (!text) return;  // the unread content would be lost
  const auto plain = formats::switchedOn(*text);
  if (formats::parseAutostartEntry(plain).program.empty()) {
    if (systemEntry(files, folders, fileName(path))) files.remove(path);
  } else if (plain != *text) {
    files.rewrite(path, *text, plain);
  }
}

// Moves the file before its marks are removed: if that fails, the entry is still paused under its own name.
void resume(ports::StartupFiles& files, const AutostartFolders& folders, const std::string& path) {
  if (files.linkTarget(asideName(path, pausedLink)) &&
      resumeLink(files, path) != ports::MoveResult::targetExists)
    return;
  const auto moved = files.moveWithoutReplacing(withExtension(path, helper::disabledExtension), path);
  if (moved == ports::MoveResult::failed) return;
  if (isPausedHere(files, path)) {
    unmark(files, path);
  } else if (moved == ports::MoveResult::sourceMissing) {
    switchOn(files, folders, path);
  }
}

bool moveAway(ports::StartupFiles& files, const std::string& path) {
  using enum ports::MoveResult;
  if (!files.read(path, largestEntry)) return false;
  const bool isLink = files.linkTarget(path).has_value();
  const auto aside = asideName(path, helper::removedExtension);
  const auto longer = isLink ? aside : withExtension(path, helper::removedExtension);
  makeRoom(files, longer);
  makeRoom(files, aside);  // an undo takes any link there for this entry
  if (!isLink && !mark(files, path)) return false;
  if (files.moveWithoutReplacing(path, longer) == moved) return true;
  if (!isLink) unmark(files, path);
  return false;
}

// Leaves a paused entry alone, as the controls of other items do.
void putAway(ports::StartupFiles& files, const AutostartFolders& folders, const std::string& path) {
  if (isPausedHere(files, path) || !moveAway(files, path)) return;
  if (systemEntry(files, folders, fileName(path)))
    files.create(path, overrideText(fileName(path), AutostartOverride::removed));
}

void bringBack(ports::StartupFiles& files, const std::string& path) {
  const auto link = asideName(path, helper::removedExtension);
  const auto removed = withExtension(path, helper::removedExtension);
  const bool isLink = files.linkTarget(link).has_value();
  const auto here = files.read(path, largestEntry);
  if ((isLink || files.exists(removed)) && here && overrideKind(fileName(path), *here)) files.remove(path);
  if (isLink) {
    files.moveWithoutReplacing(link, path);
  } else if (files.moveWithoutReplacing(removed, path) == ports::MoveResult::moved) {
    unmark(files, path);
  }
}

void deleteRemoved(ports::StartupFiles& files, const std::string& path) {
  const auto link = asideName(path, helper::removedExtension);
  if (files.linkTarget(link)) {
    files.remove(link);
  } else if (files.remove(withExtension(path, helper::removedExtension))) {
    forgetOriginal(files, path);
  }
}

void removeOverride(ports::StartupFiles& files, const AutostartFolders& folders, const std::string& path) {
  const auto own = folders.user + "/" + fileName(path);
  const auto text = files.read(own, largestEntry);
  if (!text || !overrideKind(fileName(path), *text) || !files.remove(own)) return;
  if (files.linkTarget(asideName(own, pausedLink)))
    files.moveWithoutReplacing(asideName(own, pausedLink), own);
}

void addOverride(ports::StartupFiles& files, const AutostartFolders& folders, const std::string& path,
                 AutostartOverride kind) {
  removeOverride(files, folders, path);
  const auto own = folders.user + "/" + fileName(path);
  const bool leadsNowhere = files.linkTarget(own) && !files.exists(own);
  if (leadsNowhere) files.moveWithoutReplacing(own, asideName(own, pausedLink));
  files.create(own, overrideText(fileName(path), kind));
}

}  // namespace

AutostartControl::AutostartControl(ports::StartupFiles& files, ports::LaunchControl& launchControl,
                                   WorkQueue& worker, AutostartFolders folders)
    : files_(files), launchControl_(launchControl), worker_(worker), folders_(std::move(folders)) {}

Task<StartupControl::Outcome> UserAutostartControl::setEnabled(Enablement to, std::string plistURL) {
  WorkQueue::Work work = [&files = files_, &launchControl = launchControl_, folders = folders_, to,
                          plistURL] {
    if (to == Enablement::enabled) return resume(files, folders, plistURL);
    launchControl.unload(plistURL);
    pause(files, folders, plistURL);
  };
  co_await worker_.run(std::move(work));
  co_return Outcome::done;
}

Task<StartupControl::Outcome> UserAutostartControl::remove(std::string plistURL) {
  WorkQueue::Work work = [&files = files_, &launchControl = launchControl_, folders = folders_, plistURL] {
    launchControl.unload(plistURL);
    putAway(files, folders, plistURL);
  };
  co_await worker_.run(std::move(work));
  co_return Outcome::done;
}

Task<StartupControl::Outcome> UserAutostartControl::undoRemove(std::string plistURL) {
  WorkQueue::Work work = [&files = files_, plistURL] { bringBack(files, plistURL); };
  co_await worker_.run(std::move(work));
  co_return Outcome::done;
}

Task<> UserAutostartControl::commitRemoval(std::string plistURL) {
  WorkQueue::Work work = [&files = files_, plistURL] { deleteRemoved(files, plistURL); };
  co_await worker_.run(std::move(work));
}

Task<StartupControl::Outcome> SystemAutostartControl::setEnabled(Enablement to, std::string plistURL) {
  WorkQueue::Work work = [&files = files_, &launchControl = launchControl_, folders = folders_, to,
                          plistURL] {
    if (to == Enablement::enabled) return removeOverride(files, folders, plistURL);
    launchControl.unload(plistURL);
    addOverride(files, folders, plistURL, AutostartOverride::paused);
  };
  co_await worker_.run(std::move(work));
  co_return Outcome::done;
}

Task<StartupControl::Outcome> SystemAutostartControl::remove(std::string plistURL) {
  WorkQueue::Work work = [&files = files_, &launchControl = launchControl_, folders = folders_, plistURL] {
    launchControl.unload(plistURL);
    addOverride(files, folders, plistURL, AutostartOverride::removed);
  };
  co_await worker_.run(std::move(work));
  co_return Outcome::done;
}

Task<StartupControl::Outcome> SystemAutostartControl::undoRemove(std::string plistURL) {
  WorkQueue::Work work = [&files = files_, folders = folders_, plistURL] {
    removeOverride(files, folders, plistURL);
  };
  co_await worker_.run(std::move(work));
  co_return Outcome::done;
}

Task<> SystemAutostartControl::commitRemoval(std::string) {
  co_return;
}

}  // namespace vorli
