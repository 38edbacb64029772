#include "ui/linux/PopoverWindow.h"

#include "ui/kit/ScreenPlaces.h"
#include "ui/linux/X11Window.h"

#include <QCursor>
#include <QPainterPath>
#include <QScreen>
#include <QWindow>
#include <utility>

namespace vorli::ui {
namespace {

struct PopoverWindowTimings {
  static constexpr double keyboardMustBeHere = 0.15;
  // When the focus follows the pointer, another window may get the keyboard while the popover opens.
  static constexpr double graceForFocus = 0.25;
  // Panels report a click on the icon only when the button is released.
  static constexpr double clickOnTheIcon = 0.4;
};

constexpr double maskRadius = PopoverMetrics::cornerRadius + 1.0;

QRect grown(const QRect& icon) {
  return icon.adjusted(-icon.width() / 2, -icon.height() / 2, icon.width() / 2, icon.height() / 2);
}

}  // namespace

PopoverWindow::PopoverWindow(Scheduler& scheduler, ItemPlace lastClick, ManagerSelections& selections,
                             const WindowSurroundings& surroundings)
    : PopoverPanel(scheduler, std::move(lastClick), surroundings),
      rawPresses_([this](QPoint native) { pressed(native); }),
      compositingSubscription_(selections.subscribe([this] { compositingChanged(); })) {}

PopoverWindow::~PopoverWindow() {
  unmount();
}

void PopoverWindow::prepare() {
  rawPresses_.prepare();
  PopoverPanel::prepare();
}

void PopoverWindow::hide() {
  rawPresses_.stop();
  PopoverPanel::hide();
}

// Rectangle of the panel under the click, in logical pixels of that screen.
std::optional<QRect> PopoverWindow::panelOf(const ClickAnchor& item,
                                            const QList<ScreenPlace>& screens) const {
  for (const auto& screen : screens) {
    if (!screen.geometry.contains(item.point)) continue;
    const QPoint origin = screen.geometry.topLeft();
    const auto panel = panelAt(origin + (item.point - origin) * screen.pixelRatio);
    if (!panel) return std::nullopt;
    return QRectF(origin + QPointF(panel->topLeft() - origin) / screen.pixelRatio,
                  QSizeF(panel->size()) / screen.pixelRatio)
        .toRect();
  }
  return std::nullopt;
}

// The click is lost with its screen.
std::optional<ClickAnchor> PopoverWindow::itemPlaceAfterChange() const {
  const bool isLost = openedFrom() && !widget().screen()->geometry().contains(openedFrom()->point);
  return isLost ? std::nullopt : openedFrom();
}

void PopoverWindow::equipForShowing(PopoverWidget& widget) {
  widget.winId();  // creates the window, whose properties must be set before it is shown
  keepOutOfTaskLists(*widget.windowHandle());
  // Without this, the window manager would move the window to keep its shadow on the screen and beside the
  // panel.
  surroundings().setShadowMargins(*widget.windowHandle(), PopoverWidget::margins);
}

void PopoverWindow::shapeTo(const QRect& card) {
  if (compositing() == Compositing::present) {
    const double ratio = widget().devicePixelRatioF();
    const QRect resting = widget().restingCard();
    limitInput(*widget().windowHandle(),
               QRectF(QPointF(resting.topLeft()) * ratio, QSizeF(resting.size()) * ratio).toAlignedRect());
    return;
  }
  const QRectF shape = QRectF(card).adjusted(-1.0, -1.0, 1.0, 1.0);
  const double radius = std::min(maskRadius, shape.height() / 2.0);
  QPainterPath path;
  path.addRoundedRect(shape, radius, radius);
  widget().setMask(QRegion(path.toFillPolygon().toPolygon()));
}

void PopoverWindow::makeKey() {
  if (!isShown()) return;
  widget().activateWindow();
  scheduler().after(PopoverWindowTimings::keyboardMustBeHere,
                    [this, opening = openings(), alive = std::weak_ptr<bool>(alive_)] {
                      if (alive.expired() || !isShown() || opening != openings() || widget().isActiveWindow())
                        return;
                      surroundings().bringToFront(*widget().windowHandle());
                    });
}

Subscription PopoverWindow::monitorPressesOutside(std::function<void()> handler) {
  if (isShown()) rawPresses_.listen();
  return presses_.add(std::move(handler));
}

void PopoverWindow::pressed(QPoint native) {
  const auto point = logicalPoint(native, screenPlaces());
  if (!isShown() || !point) return;
  // The area that takes clicks. It includes the place where the card is about to unfold, unless the window is
  // cut to what is painted.
  const QRect card = compositing() == Compositing::present ? widget().restingCard() : widget().card();
  if (card.translated(widget().pos()).contains(*point)) return;
  if (!openedFrom() || !grown(openedFrom()->icon).contains(*point)) return presses_.deliver();
  // A click on the icon is about to close the popover; if it were closed now, that click would open it again.
  // A press beside the icon may have been meant for a neighbour.
  if (openedFrom()->icon.contains(*point)) return;
  scheduler().after(PopoverWindowTimings::clickOnTheIcon,
                    [this, opening = openings(), alive = std::weak_ptr<bool>(alive_)] {
                      if (!alive.expired() && isShown() && opening == openings()) presses_.deliver();
                    });
}

void PopoverWindow::left() {
  if (!isShown() || scheduler().now() < openedAt() + PopoverWindowTimings::graceForFocus) return;
  // A panel may take the keyboard when the icon is pressed; the click that follows closes the popover.
  const bool isOnIcon = openedFrom() && grown(openedFrom()->icon).contains(QCursor::pos());
  if (isOnIcon && isButtonHeld()) return;
  performClose();
}

std::uint32_t PopoverWindow::nativeWindow() const {
  return isShown() ? static_cast<std::uint32_t>(widget().effectiveWinId()) : 0U;
}

}  // namespace vorli::ui
