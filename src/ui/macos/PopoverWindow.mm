#include "ui/macos/PopoverWindow.h"

#include "ui/macos/NativeWindow.h"

#import <AppKit/AppKit.h>
#include <QCursor>
#include <QWindow>
#include <memory>
#include <utility>

namespace vorli::ui {

PopoverWindow::PopoverWindow(Scheduler& scheduler, ItemPlace itemPlace,
                             const WindowSurroundings& surroundings)
    : PopoverPanel(scheduler, std::move(itemPlace), surroundings) {}

PopoverWindow::~PopoverWindow() {
  unmount();
}

// Needs no search for the menu bar: it is the part of the screen outside the free area.
std::optional<QRect> PopoverWindow::panelOf(const ClickAnchor&, const QList<ScreenPlace>&) const {
  return std::nullopt;
}

// The menu bar moves with its screen.
std::optional<ClickAnchor> PopoverWindow::itemPlaceAfterChange() const {
  return currentItemPlace();
}

void PopoverWindow::equip(PopoverWidget& widget) {
  // The system hides other panels of a program when another one becomes active, without a question.
  widget.setAttribute(Qt::WA_MacAlwaysShowToolWindow);
  widget.winId();  // creates the window, whose properties must be set before it is shown
  NSWindow* const window = nativeWindow(*widget.windowHandle());
  window.level = CGWindowLevelForKey(kCGPopUpMenuWindowLevelKey);
  window.collectionBehavior = NSWindowCollectionBehaviorCanJoinAllSpaces |
                              NSWindowCollectionBehaviorTransient |
                              NSWindowCollectionBehaviorFullScreenAuxiliary;
  surroundings().setShadowMargins(*widget.windowHandle(), PopoverWidget::margins);
}

void PopoverWindow::makeKey() {
  if (isShown()) surroundings().bringToFront(*widget().windowHandle());
}

// The system reports presses to this monitor only when they go to another program, so a press on the status
// item, which is the program's own, is not among them.
Subscription PopoverWindow::monitorPressesOutside(std::function<void()> handler) {
  const auto press = std::make_shared<std::function<void()>>(std::move(handler));
  const id monitor =
      [NSEvent addGlobalMonitorForEventsMatchingMask:NSEventMaskLeftMouseDown | NSEventMaskRightMouseDown
                                             handler:^(NSEvent*) {
                                               const auto kept = press;  // the handler may end this monitor
                                               (*kept)();
                                             }];
  if (!monitor) return {};
  return Subscription([monitor] { [NSEvent removeMonitor:monitor]; });
}

// A press on the status item closes the popover when the button is released; if it were closed now, that
// click would open it again.
void PopoverWindow::left() {
  if (!isShown()) return;
  const bool isOnItem = openedFrom() && openedFrom()->icon.contains(QCursor::pos());
  if (isOnItem && NSEvent.pressedMouseButtons != 0) return;
  performClose();
}

}  // namespace vorli::ui
