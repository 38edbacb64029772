#include "popover/PopoverHost.h"

#include "base/Animation.h"
#include "base/Sleep.h"

#include <utility>

namespace vorli {
namespace {

struct PopoverHostTimings {
  static constexpr double unfurl = 0.34;
  static constexpr double resize = 0.32;
  static constexpr double rollUp = 0.22;
  static constexpr double untilClosed = 0.24;  // from the start of the roll-up
};

constexpr CubicBezier unfurlCurve{0.22, 0.9, 0.28, 1.06};  // overshoots slightly and settles
constexpr CubicBezier rollUpCurve{0.55, 0.0, 0.78, 0.12};

}  // namespace

PopoverHost::PopoverHost(const PopoverHostNeeds& needs)
    : scheduler_(needs.scheduler),
      notifications_(needs.notifications),
      popover_(needs.popover),
      host_(needs.host),
      helperManager_(needs.helperManager),
      systemMonitor_(needs.systemMonitor),
      tasks_(needs.scheduler) {}

void PopoverHost::createPopover() {
  popover_.setContentSize(mountedSize);
  popover_.setShouldCloseHandler([this] { return popoverShouldClose(); });
  popover_.setDidShowHandler([this] { popoverDidShow(); });
}

void PopoverHost::observeContent() {
  closeSubscription_ =
      notifications_.observe<VorliClosePopover>([this](const auto&) { tasks_.spawn(close()); });
  sizeSubscription_ = notifications_.observe<VorliPopoverSize>(
      [this](const VorliPopoverSize& size) { tasks_.spawn(resize(size)); });
}

void PopoverHost::togglePopover() {
  if (popover_.isShown()) {
    opensAfterRollUp_ = false;  // the latest request counts
    popover_.performClose();
    return;
  }
  if (!popover_.hasPlace()) return;  // checked first, because a tick is costly
  systemMonitor_.setCadence(MonitorCadence::active);
  systemMonitor_.refresh();
  popover_.setContentSize({popover_.contentSize().width, popoverCollapsedHeight});
  isUnfurlingNow_ = true;
  if (!popover_.show()) {
    isUnfurlingNow_ = false;
    systemMonitor_.setCadence(MonitorCadence::idle);
    return;
  }
  ++openings_;
  opensAfterRollUp_ = false;
  notifications_.post(VorliAnimateAppear{});
  eventMonitor_ = popover_.monitorPressesOutside([this] { closeIfShown(); });
  helperManager_.refreshStatus();
}

void PopoverHost::showPopover() {
  if (!popover_.isShown()) {
    togglePopover();
  } else if (isRollingUpNow_) {
    opensAfterRollUp_ = true;
  } else {
    tasks_.spawn(takeFocus());
  }
}

bool PopoverHost::popoverShouldClose() {
  if (std::exchange(allowImmediateClose_, false)) return true;
  tasks_.spawn(rollUp());
  return false;
}

// A popover gets no keyboard input while its program is not the active one.
void PopoverHost::popoverDidShow() {
  tasks_.spawn(takeFocus());
}

Task<> PopoverHost::takeFocus() {
  host_.activateIgnoringOtherApps();
  popover_.makeKey();
  co_return;
}

Task<> PopoverHost::close() {
  closeIfShown();
  co_return;
}

void PopoverHost::closeIfShown() {
  if (!popover_.isShown()) return;
  popover_.performClose();
  removeEventMonitor();
  systemMonitor_.setCadence(MonitorCadence::idle);
}

Task<> PopoverHost::rollUp() {
  if (!popover_.isShown()) co_return;  // an earlier roll-up has closed it since the request
  const auto opening = openings_;
  notifications_.post(VorliAnimateDismiss{});
  isRollingUpNow_ = true;
  const ports::PopoverSize strip{popover_.contentSize().width, popoverCollapsedHeight};
  popover_.animateContentSize(strip, Animation::timingCurve(rollUpCurve, PopoverHostTimings::rollUp));
  co_await sleepFor(scheduler_, PopoverHostTimings::untilClosed);
  if (opening != openings_) co_return;  // it was opened again since
  // If another roll-up has already closed it, the flag would stay set for the next close.
  if (popover_.isShown()) {
    allowImmediateClose_ = true;
    popover_.performClose();
  }
  isRollingUpNow_ = false;
  removeEventMonitor();
  systemMonitor_.setCadence(MonitorCadence::idle);
  if (std::exchange(opensAfterRollUp_, false)) togglePopover();
}

Task<> PopoverHost::resize(VorliPopoverSize size) {
  if (isRollingUpNow_) co_return;
  const Animation animation = std::exchange(isUnfurlingNow_, false)
                                  ? Animation::timingCurve(unfurlCurve, PopoverHostTimings::unfurl)
                                  : Animation::standard(PopoverHostTimings::resize);
  popover_.animateContentSize({size.width, size.height}, animation);
}

void PopoverHost::removeEventMonitor() {
  eventMonitor_.reset();
}

}  // namespace vorli
