#include "base/Sleep.h"
#include "startup/StartupItemService.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace vorli {

namespace {

using Outcome = StartupControl::Outcome;
using Reason = HelperUnavailable::Reason;

constexpr double quitSettles = 0.8;  // time for an application to quit before the next scan

Reason reasonOf(Outcome outcome) {
  if (outcome == Outcome::notApproved) return Reason::notApproved;
  return outcome == Outcome::declined ? Reason::declined : Reason::notResponding;
}

bool lacksConsent(Outcome outcome) {
  return outcome == Outcome::notApproved || outcome == Outcome::declined;
}

}  // namespace

void StartupItemService::setEnabled(Enablement to, const StartupItem& item, CreateUndo createUndo) {
  if (!item.plistURL) {
    settings_.open();
    return;
  }
  showAs(to, item.id);
  if (createUndo == CreateUndo::yes && to == Enablement::paused) {
    pendingUndo = UndoAction{.kind = UndoAction::Kind::paused,
                             .itemID = item.id,
                             .displayName = item.displayName,
                             .createdAt = calendar_.now(),
                             .removedFromURL = std::nullopt};
  }
  inTurn(item.id, switchItem(to, item, createUndo));
}

void StartupItemService::remove(const StartupItem& item, CreateUndo createUndo) {
  if (!item.plistURL) return;
  auto remaining = items.get();
  const auto removed = std::erase_if(remaining, [&](const auto& each) { return each.id == item.id; });
  if (removed > 0) items = std::move(remaining);
  if (createUndo == CreateUndo::yes) {
    pendingUndo = UndoAction{.kind = UndoAction::Kind::removed,
                             .itemID = item.id,
                             .displayName = item.displayName,
                             .createdAt = calendar_.now(),
                             .removedFromURL = item.plistURL};
  }
  inTurn(item.id, removeItem(item, createUndo));
}

void StartupItemService::quit(const StartupItem& item) {
  if (!item.runningAppBundleID) return;
  const auto running = workspace_.runningApplications();
  bool isApplication = false, isLeftToUser = false;
  for (const auto& application : running) {
    if (application.bundleIdentifier != std::string_view(*item.runningAppBundleID)) continue;
    const auto answer = workspace_.terminate(application.processIdentifier);
    isLeftToUser = isLeftToUser || answer == ports::QuitAnswer::cannotBeAsked;
    isApplication = true;
  }
  if (isLeftToUser) showHelperUnavailable(Reason::closedByHand, item.displayName);
  if (!isApplication && item.plistURL) return inTurn(item.id, quitService(item));
  tasks_.spawn(refreshAfterQuit());
}

void StartupItemService::undoPause(const UndoAction& action) {
  const auto row = std::ranges::find(items.get(), action.itemID, &StartupItem::id);
  if (row != items->end()) setEnabled(Enablement::enabled, StartupItem(*row), CreateUndo::no);
  pendingUndo = std::nullopt;
}

void StartupItemService::undoRemove(const UndoAction& action) {
  if (action.removedFromURL) inTurn(action.itemID, bringBack(action));
}

void StartupItemService::commitRemoval(const UndoAction& action) {
  if (action.removedFromURL) inTurn(action.itemID, deleteRemoved(*action.removedFromURL));
}

void StartupItemService::endUndo(const UndoAction& action) {
  if (pendingUndo.get() == action) pendingUndo = std::nullopt;
}

void StartupItemService::dismiss(const HelperUnavailable& shown) {
  if (helperUnavailable.get() == shown) helperUnavailable = std::nullopt;
}

void StartupItemService::askAgain() {
  if (!unapproved_) return;
  const auto again = std::exchange(unapproved_, nullptr);
  helperUnavailable = std::nullopt;
  again();
}

void StartupItemService::pauseAllUpdaters() {
  for (const auto& item : updaterItems()) setEnabled(Enablement::paused, item, CreateUndo::no);
}

void StartupItemService::removeAllLeftovers() {
  for (const auto& item : leftoverItems()) remove(item, CreateUndo::no);
}

Task<> StartupItemService::switchItem(Enablement to, StartupItem item, CreateUndo createUndo) {
  const auto outcome = co_await controls_.forItem(item).setEnabled(to, *item.plistURL);
  if (lacksConsent(outcome)) unapproved_ = [=, this] { setEnabled(to, item, createUndo); };
  if (outcome != Outcome::done) reportHelperUnavailable(reasonOf(outcome), item.id, item.displayName);
  refresh();
}

// The undo of a failed removal stays until it expires.
Task<> StartupItemService::removeItem(StartupItem item, CreateUndo createUndo) {
  const auto outcome = co_await controls_.forItem(item).remove(*item.plistURL);
  if (lacksConsent(outcome)) unapproved_ = [=, this] { remove(item, createUndo); };
  if (outcome != Outcome::done) showHelperUnavailable(reasonOf(outcome), item.displayName);
  refresh();
}

// The undo of another action that was taken meanwhile stays.
Task<> StartupItemService::bringBack(UndoAction action) {
  const auto& plistURL = *action.removedFromURL;
  const auto outcome = co_await controls_.forRemoved(plistURL).undoRemove(plistURL);
  if (lacksConsent(outcome)) unapproved_ = [=, this] { undoRemove(action); };
  if (outcome != Outcome::done) showHelperUnavailable(reasonOf(outcome), action.displayName);
  endUndo(action);
  refresh();
}

Task<> StartupItemService::deleteRemoved(std::string plistURL) {
  co_await controls_.forRemoved(plistURL).commitRemoval(plistURL);
}

Task<> StartupItemService::quitService(StartupItem item) {
  co_await controls_.forItem(item).quit(*item.plistURL);
  co_await refreshAfterQuit();
}

Task<> StartupItemService::refreshAfterQuit() {
  co_await sleepFor(scheduler_, quitSettles);
  refresh();
}

// An action waits for the earlier one on the same item: an undo that overtook its removal would find nothing
// to restore.
void StartupItemService::inTurn(const std::string& itemID, Task<> action) {
  std::erase_if(lastActions_, [](const auto& entry) { return !entry.second.isRunning(); });
  auto& last = lastActions_[itemID];
  last = tasks_.spawn(afterwards(last, std::move(action)));
}

Task<> StartupItemService::afterwards(TaskHandle earlier, Task<> action) {
  co_await earlier.finished();
  co_await std::move(action);
}

void StartupItemService::showAs(Enablement state, const std::string& itemID) {
  auto changed = items.get();
  const auto row = std::ranges::find(changed, itemID, &StartupItem::id);
  if (row == changed.end()) return;
  row->isEnabled = state == Enablement::enabled;
  items = std::move(changed);
}

// A pause that failed cannot be undone.
void StartupItemService::reportHelperUnavailable(Reason reason, const std::string& itemID,
                                                 const std::string& displayName) {
  const auto& undo = pendingUndo.get();
  if (undo && undo->itemID == itemID) pendingUndo = std::nullopt;
  showHelperUnavailable(reason, displayName);
}

void StartupItemService::showHelperUnavailable(Reason reason, const std::string& displayName) {
  helperUnavailable = HelperUnavailable{displayName, calendar_.now(), reason};
}

}  // namespace vorli
