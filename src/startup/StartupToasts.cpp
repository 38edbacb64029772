#include "startup/StartupToasts.h"

#include "base/Sleep.h"
#include "base/UnicodeText.h"
#include "insights/CulpritSentence.h"

#include <utility>

namespace vorli {

namespace {

constexpr int countdownTicks = 60;

bool isRemoval(const UndoAction& action) {
  return action.kind == UndoAction::Kind::removed;
}

}  // namespace

UndoToastView::UndoToastView(UndoAction action, StartupItemService& service, Scheduler& scheduler,
                             ports::Announcements& announcements)
    : action_(std::move(action)), service_(service), scheduler_(scheduler), tasks_(scheduler) {
  announcements.post(std::string(word()) + " " + action_.displayName + ". Six seconds to undo.");
  tasks_.spawn(countDown());
}

std::string_view UndoToastView::word() const {
  return isRemoval(action_) ? "Removed" : "Paused";
}

std::string UndoToastView::undoAccessibilityLabel() const {
  return "Undo " + lowercased(word()) + " " + action_.displayName;
}

void UndoToastView::undoPressed() {
  isTakenBack_ = true;
  if (isRemoval(action_)) {
    service_.undoRemove(action_);
  } else {
    service_.undoPause(action_);
  }
}

Task<> UndoToastView::countDown() {
  for (int tick = 1; tick <= countdownTicks; ++tick) {
    co_await sleepFor(scheduler_, window / countdownTicks);
    elapsed = static_cast<double>(tick) / countdownTicks;
  }
  if (isRemoval(action_) && !isTakenBack_) service_.commitRemoval(action_);
  service_.endUndo(action_);
}

HelperUnavailableToast::HelperUnavailableToast(HelperUnavailable state, StartupItemService& service,
                                               const HelperManager& helper, Scheduler& scheduler,
                                               ports::Announcements& announcements,
                                               const StartupAppsTexts& texts)
    : state_(std::move(state)),
      service_(service),
      helper_(helper),
      scheduler_(scheduler),
      announcements_(announcements),
      texts_(texts),
      tasks_(scheduler) {
  if (is(Reason::notApproved) && !texts_.isApprovedElsewhere) {
    tasks_.spawn(announceWindow());
    obstacleSubscription_ =
        helper_.approvalObstacle.subscribe([this](const std::optional<std::string>& text) {
          if (text) announcements_.post(announcement());
        });
  } else {
    announcements_.post(announcement());
  }
  tasks_.spawn(passBy());
}

// A desktop does not report that its password window has opened, only that it cannot.
Task<> HelperUnavailableToast::announceWindow() {
  co_await sleepFor(scheduler_, passwordWindowOpens);
  if (!obstacle()) announcements_.post(announcement());
}

std::optional<std::string> HelperUnavailableToast::obstacle() const {
  if (!is(Reason::notApproved) || texts_.isApprovedElsewhere) return std::nullopt;
  return helper_.approvalObstacle.get();
}

std::string_view HelperUnavailableToast::symbol() const {
  return is(Reason::notResponding) ? "wrench.and.screwdriver.fill" : "exclamationmark.triangle.fill";
}

// The same text is used for a removal and for a pause.
std::string_view HelperUnavailableToast::textBeforeName() const {
  if (is(Reason::closedByHand) || obstacle()) return {};
  return needsApproval() ? texts_.notApproved : "Helper isn't responding. Couldn't remove ";
}

std::string HelperUnavailableToast::text() const {
  if (const auto reason = obstacle()) return *reason;
  if (is(Reason::closedByHand)) return CulpritSentence::closedByHandText(state_.displayName);
  return std::string(textBeforeName()) + state_.displayName;
}

std::string HelperUnavailableToast::announcement() const {
  switch (state_.reason) {
    case Reason::notApproved:
      return obstacle() ? text() : text() + std::string(texts_.notApprovedSpoken);
    case Reason::declined:
      return text() + std::string(texts_.declinedSpoken);
    case Reason::notResponding:
      return text() + ". Press Reinstall to try again.";
    case Reason::closedByHand:
      break;
  }
  return text();
}

std::string_view HelperUnavailableToast::buttonTitle() const {
  if (is(Reason::closedByHand)) return "OK";
  return needsApproval() ? texts_.approve : "Reinstall";
}

std::string_view HelperUnavailableToast::buttonAccessibilityLabel() const {
  if (is(Reason::closedByHand)) return "OK";
  return needsApproval() ? texts_.approveLabel : "Reinstall background helper";
}

std::string HelperUnavailableToast::buttonAccessibilityHint() const {
  if (!is(Reason::notResponding)) return text();
  return "Rebuilds the helper. Try Remove on " + state_.displayName + " again afterwards.";
}

Task<> HelperUnavailableToast::passBy() {
  co_await sleepFor(scheduler_, window);
  service_.dismiss(state_);
}

}  // namespace vorli
