#include "startup/UnitControls.h"

#include "base/AwaitedReply.h"
#include "base/FilePath.h"
#include "contract/SystemStartupFolders.h"
#include "formats/UnitFile.h"
#include "startup/EarlierFiles.h"

#include <algorithm>
#include <memory>
#include <utility>

namespace vorli {

namespace {

// The work is done by functions of ports and values alone: it runs on the second thread and may outlive the
// control.

bool isIn(const std::vector<UnitFolder>& folders, UnitFolder::Owner owner, const std::string& path) {
  return std::ranges::any_of(folders, [&](const auto& folder) {
    return folder.owner == owner && path == folder.path + "/" + fileName(path);
  });
}

bool isUsersFile(const std::vector<UnitFolder>& folders, const std::string& path) {
  return isIn(folders, UnitFolder::Owner::user, path);
}

bool isAdministratorsFile(const std::vector<UnitFolder>& folders, const std::string& path) {
  return isIn(folders, UnitFolder::Owner::administrator, path);
}

std::string maskPath(const std::vector<UnitFolder>& folders, const std::string& path) {
  return folders.front().path + "/" + fileName(path);
}

void unmask(ports::StartupFiles& files, const std::vector<UnitFolder>& folders, const std::string& path) {
  if (UnitSearch(files, folders).isMask(folders.front(), fileName(path)))
    files.remove(maskPath(folders, path));
}

// Moves the file away if it is the user's. If something else would then be loaded under its name, masks that
// with an empty file, which works like a link to /dev/null.
void putAway(ports::StartupFiles& files, const std::vector<UnitFolder>& folders, const std::string& path,
             std::string_view extension) {
  UnitSearch search(files, folders);
  if (isUsersFile(folders, path) && files.exists(path) && !search.isMask(folders.front(), fileName(path))) {
    const auto longer = withExtension(path, extension);
    makeRoom(files, longer);
    if (files.moveWithoutReplacing(path, longer) != ports::MoveResult::moved) return;
  }
  const auto remaining = search.find(fileName(path));
  const bool isLoaded = remaining && (remaining->isEnabled || remaining->isInstance);
  if (isLoaded) files.create(maskPath(folders, path), "");
}

void bringBack(ports::StartupFiles& files, const std::vector<UnitFolder>& folders, const std::string& path,
               std::string_view extension) {
  unmask(files, folders, path);
  if (isUsersFile(folders, path)) files.moveWithoutReplacing(withExtension(path, extension), path);
}

StartupControl::Outcome outcomeOf(ports::UnitReply reply) {
  switch (reply) {
    case ports::UnitReply::done:
      return StartupControl::Outcome::done;
    case ports::UnitReply::refused:
      return StartupControl::Outcome::declined;
    case ports::UnitReply::unavailable:
      break;
  }
  return StartupControl::Outcome::notResponding;
}

}  // namespace

UserUnitControl::UserUnitControl(ports::StartupFiles& files, ports::LaunchControl& launchControl,
                                 WorkQueue& worker, StartupControl& ofHelper, std::vector<UnitFolder> folders)
    : files_(files),
      launchControl_(launchControl),
      worker_(worker),
      ofHelper_(ofHelper),
      folders_(std::move(folders)) {}

Task<StartupControl::Outcome> UserUnitControl::setEnabled(Enablement to, std::string plistURL) {
  const bool isLeftToHelper = co_await isHelpers(plistURL);
  if (isLeftToHelper) co_return co_await ofHelper_.setEnabled(to, std::move(plistURL));
  WorkQueue::Work work = [&files = files_, &launchControl = launchControl_, folders = folders_, to,
                          plistURL] {
    if (to == Enablement::paused) {
      launchControl.unload(plistURL);
      putAway(files, folders, plistURL, helper::disabledExtension);
      launchControl.reload();
    } else {
      bringBack(files, folders, plistURL, helper::disabledExtension);
      launchControl.reload();
      launchControl.load(plistURL);
    }
  };
  co_await worker_.run(std::move(work));
  co_return Outcome::done;
}

Task<StartupControl::Outcome> UserUnitControl::remove(std::string plistURL) {
  const bool isLeftToHelper = co_await isHelpers(plistURL);
  if (isLeftToHelper) co_return co_await ofHelper_.remove(std::move(plistURL));
  WorkQueue::Work work = [&files = files_, &launchControl = launchControl_, folders = folders_, plistURL] {
    launchControl.unload(plistURL);
    putAway(files, folders, plistURL, helper::removedExtension);
    launchControl.reload();
  };
  co_await worker_.run(std::move(work));
  co_return Outcome::done;
}

Task<StartupControl::Outcome> UserUnitControl::undoRemove(std::string plistURL) {
  const bool isLeftToHelper = co_await isHelpers(plistURL);
  if (isLeftToHelper) co_return co_await ofHelper_.undoRemove(std::move(plistURL));
  WorkQueue::Work work = [&files = files_, &launchControl = launchControl_, folders = folders_, plistURL] {
    bringBack(files, folders, plistURL, helper::removedExtension);
    launchControl.reload();
  };
  co_await worker_.run(std::move(work));
  co_return Outcome::done;
}

Task<> UserUnitControl::commitRemoval(std::string plistURL) {
  WorkQueue::Work work = [&files = files_, plistURL] {
    files.remove(withExtension(plistURL, helper::removedExtension));
  };
  co_await worker_.run(std::move(work));
}

Task<> UserUnitControl::quit(std::string plistURL) {
  WorkQueue::Work work = [&launchControl = launchControl_, plistURL] { launchControl.unload(plistURL); };
  co_await worker_.run(std::move(work));
}

// False for a unit that this user masked: it can be resumed without the helper.
Task<bool> UserUnitControl::isHelpers(std::string plistURL) {
  if (!isAdministratorsFile(folders_, plistURL)) co_return false;
  WorkQueue::Question isUnmasked = [&files = files_, folders = folders_, plistURL] {
    return !UnitSearch(files, folders).isMask(folders.front(), fileName(plistURL));
  };
  co_return co_await worker_.ask(std::move(isUnmasked));
}

SystemUnitControl::SystemUnitControl(Scheduler& scheduler, ports::StartupFiles& files,
                                     ports::SystemUnits& units, WorkQueue& worker, StartupControl& ofHelper,
                                     std::string administratorsFolder)
    : scheduler_(scheduler),
      files_(files),
      units_(units),
      worker_(worker),
      ofHelper_(ofHelper),
      administratorsFolder_(std::move(administratorsFolder)) {}

Task<StartupControl::Outcome> SystemUnitControl::setEnabled(Enablement to, std::string plistURL) {
  const auto mover = co_await moverOf(plistURL);
  if (mover == Mover::helper) co_return co_await ofHelper_.setEnabled(to, std::move(plistURL));
  if (mover == Mover::none) co_return Outcome::done;
  co_return co_await mask(to, std::move(plistURL));
}

Task<StartupControl::Outcome> SystemUnitControl::remove(std::string plistURL) {
  const auto mover = co_await moverOf(plistURL);
  if (mover == Mover::helper) co_return co_await ofHelper_.remove(std::move(plistURL));
  if (mover == Mover::none) co_return Outcome::done;
  co_return co_await mask(Enablement::paused, std::move(plistURL));
}

Task<StartupControl::Outcome> SystemUnitControl::undoRemove(std::string plistURL) {
  const auto mover = co_await moverOf(plistURL);
  if (mover == Mover::helper) co_return co_await ofHelper_.undoRemove(std::move(plistURL));
  if (mover == Mover::none) co_return Outcome::done;
  co_return co_await mask(Enablement::enabled, std::move(plistURL));
}

Task<> SystemUnitControl::commitRemoval(std::string plistURL) {
  const auto mover = co_await moverOf(plistURL);
  if (mover == Mover::helper) co_await ofHelper_.commitRemoval(std::move(plistURL));
}

Task<SystemUnitControl::Mover> SystemUnitControl::moverOf(std::string plistURL) {
  if (!plistURL.starts_with(administratorsFolder_)) co_return Mover::manager;
  const auto mover = std::make_shared<Mover>(Mover::none);
  WorkQueue::Work work = [&files = files_, plistURL, mover] { *mover = moverInEtc(files, plistURL); };
  co_await worker_.run(std::move(work));
  co_return *mover;
}

// An empty file is a mask. A unit whose file has disappeared since the scan is not masked, because a later
// unit of that name would silently not start.
SystemUnitControl::Mover SystemUnitControl::moverInEtc(ports::StartupFiles& files, const std::string& path) {
  if (files.linkTarget(path)) return Mover::manager;
  if (files.exists(path)) return files.read(path, 0) == "" ? Mover::manager : Mover::helper;
  for (const auto extension : {helper::disabledExtension, helper::removedExtension})
    if (files.exists(withExtension(path, extension))) return Mover::helper;
  const auto name = fileName(path);
  const auto parts = formats::splitUnitName(name);
  return parts && parts->isInstance() ? Mover::manager : Mover::none;
}

Task<StartupControl::Outcome> SystemUnitControl::mask(Enablement to, std::string plistURL) {
  AwaitedReply<ports::UnitReply> reply(scheduler_);
  if (to == Enablement::paused) {
    units_.mask(fileName(plistURL), reply.reply());
  } else {
    units_.unmask(fileName(plistURL), reply.reply());
  }
  const auto answer = co_await reply;
  co_return outcomeOf(answer);
}

}  // namespace vorli
