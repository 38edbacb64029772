#include "ui/linux/PopoverWindow.h"

#include "ui/linux/ScreenPlaces.h"
#include "ui/linux/X11Window.h"

#include <QCursor>
#include <QGuiApplication>
#include <QPainterPath>
#include <QScreen>
#include <QWindow>
#include <utility>

namespace vorli::ui {
namespace {

struct Timings {
  static constexpr double keyboardMustBeHere = 0.15;
  // With focus that follows the pointer, another window may get the keyboard while ours comes up.
  static constexpr double graceForFocus = 0.25;
  // A click on the icon is told by the panel only when the button comes up again.
  static constexpr double clickOnTheIcon = 0.4;
  static constexpr double keepPictures = 60.0;
};

constexpr double maskRadius = PopoverMetrics::cornerRadius + 1.0;

QRect grown(const QRect& icon) {
  return icon.adjusted(-icon.width() / 2, -icon.height() / 2, icon.width() / 2, icon.height() / 2);
}

// The panel under the click, in logical pixels of that screen.
std::optional<QRect> panelOf(const ClickAnchor& click, const QList<ScreenPlace>& screens) {
  for (const auto& screen : screens) {
    if (!screen.geometry.contains(click.point)) continue;
    const QPoint origin = screen.geometry.topLeft();
    const auto panel = panelAt(origin + (click.point - origin) * screen.pixelRatio);
    if (!panel) return std::nullopt;
    return QRectF(origin + QPointF(panel->topLeft() - origin) / screen.pixelRatio,
                  QSizeF(panel->size()) / screen.pixelRatio)
        .toRect();
  }
  return std::nullopt;
}

}  // namespace

PopoverWindow::PopoverWindow(Scheduler& scheduler, LastClick lastClick, DesktopAppearance& desktop,
                             ManagerSelections& selections, const WindowSurroundings& surroundings)
    : scheduler_(scheduler),
      lastClick_(std::move(lastClick)),
      desktop_(desktop),
      selections_(selections),
      surroundings_(surroundings),
      rawPresses_([this](QPoint native) { pressed(native); }),
      appearanceSubscription_(desktop.subscribe([this] {
        if (widget_) widget_->scene().setAppearance(surroundings_.appearance());
      })),
      compositingSubscription_(selections.subscribe([this] { compositingChanged(); })) {}

PopoverWindow::~PopoverWindow() {
  unmount();
}

void PopoverWindow::mount(PopoverView& view) {
  view_ = &view;
}

void PopoverWindow::unmount() {
  if (shown_) hide();
  scheduler_.cancel(std::exchange(forgetTimer_, 0));
  widget_.reset();
  view_ = nullptr;
}

bool PopoverWindow::show() {
  if (shown_) return true;
  if (!view_) return false;
  openedFrom_ = lastClick_();
  const auto place = findPlace();
  if (!place) return false;
  scheduler_.cancel(std::exchange(forgetTimer_, 0));
  if (!widget_ || compositing_ != surroundings_.compositing()) makeWidget();
  shown_ = true;
  ++openings_;
  openedAt_ = scheduler_.now();
  widget_->begin();
  moveTo(*place);
  appear();
  if (didShow_) didShow_();
  return true;
}

std::optional<PopoverPlace> PopoverWindow::findPlace() const {
  const auto screens = screenPlaces();
  return popoverPlace(openedFrom_, openedFrom_ ? panelOf(*openedFrom_, screens) : std::nullopt, screens);
}

void PopoverWindow::makeWidget() {
  compositing_ = surroundings_.compositing();
  widget_ = std::make_unique<PopoverWidget>(
      scheduler_, *view_, compositing_,
      PopoverWidget::Callbacks{.escape = [this] { performClose(); },
                               .left = [this] { left(); },
                               .card = [this](const QRect& card) { shapeTo(card); }});
  widget_->scene().setAppearance(surroundings_.appearance());
  widget_->scene().setCardHeight(size_.height);
}

void PopoverWindow::appear() {
  widget_->winId();  // makes the window, which the window manager is to know before it shows
  keepOutOfTaskLists(*widget_->windowHandle());
  // Else it would be pushed to where its shadow, too, is on the screen and beside the panel.
  surroundings_.setShadowMargins(*widget_->windowHandle(), PopoverWidget::margins);
  widget_->show();
  widget_->raise();
  shapeTo(widget_->card());
  widget_->paintAhead();
  const auto again = [this] { placeAgain(); };
  screenChanges_ = {QObject::connect(widget_->screen(), &QScreen::geometryChanged, widget_.get(), again),
                    QObject::connect(qGuiApp, &QGuiApplication::screenRemoved, widget_.get(), again)};
}

void PopoverWindow::moveTo(const PopoverPlace& place) {
  widget_->scene().setEdge(place.edge);
  const int x = place.left - PopoverWidget::margins.left();
  const int y = place.edge == PopoverScene::Edge::top
                    ? place.y - PopoverWidget::margins.top()
                    : place.y - (widget_->height() - static_cast<int>(CardPainter::bottomReach));
  widget_->move(x, y);
}

// The screen has another size, or has gone: the panel has gone with its edge, and the icon with the panel.
void PopoverWindow::placeAgain() {
  if (!shown_) return;
  const bool isLost = openedFrom_ && !widget_->screen()->geometry().contains(openedFrom_->point);
  if (isLost) openedFrom_.reset();
  if (const auto place = findPlace()) moveTo(*place);
}

void PopoverWindow::shapeTo(const QRect& card) {
  if (compositing_ == Compositing::present) {
    const double ratio = widget_->devicePixelRatioF();
    const QRect resting = widget_->restingCard();
    limitInput(*widget_->windowHandle(),
               QRectF(QPointF(resting.topLeft()) * ratio, QSizeF(resting.size()) * ratio).toAlignedRect());
    return;
  }
  const QRectF shape = QRectF(card).adjusted(-1.0, -1.0, 1.0, 1.0);
  const double radius = std::min(maskRadius, shape.height() / 2.0);
  QPainterPath path;
  path.addRoundedRect(shape, radius, radius);
  widget_->setMask(QRegion(path.toFillPolygon().toPolygon()));
}

void PopoverWindow::performClose() {
  if (!shown_) return;
  if (shouldClose_ && !shouldClose_()) return;
  hide();
}

void PopoverWindow::hide() {
  shown_ = false;
  rawPresses_.stop();
  for (const auto& change : screenChanges_) QObject::disconnect(change);
  widget_->hide();
  widget_->end();
  forgetLater();
}

// The pictures take megabytes on a dense screen, and milliseconds to draw again.
void PopoverWindow::forgetLater() {
  forgetTimer_ = scheduler_.after(
      Timings::keepPictures,
      [this] {
        forgetTimer_ = 0;
        widget_->forgetPictures();
      },
      Scheduler::Precision::coarse);
}

void PopoverWindow::setContentSize(ports::PopoverSize size) {
  size_ = size;
  if (widget_) widget_->scene().setCardHeight(size.height);
}

void PopoverWindow::animateContentSize(ports::PopoverSize size, const Animation& animation) {
  if (size == size_) return;
  if (!shown_) return setContentSize(size);
  size_ = size;
  widget_->scene().moveCard(size.height, animation);
}

void PopoverWindow::makeKey() {
  if (!shown_) return;
  widget_->activateWindow();
  scheduler_.after(Timings::keyboardMustBeHere,
                   [this, opening = openings_, alive = std::weak_ptr<bool>(alive_)] {
                     if (alive.expired() || !shown_ || opening != openings_ || widget_->isActiveWindow())
                       return;
                     surroundings_.bringToFront(*widget_->windowHandle());
                   });
}

Subscription PopoverWindow::monitorPressesOutside(std::function<void()> handler) {
  if (shown_) rawPresses_.listen();
  return presses_.add(std::move(handler));
}

void PopoverWindow::pressed(QPoint native) {
  const auto point = logicalPoint(native, screenPlaces());
  if (!shown_ || !point) return;
  // What takes the clicks: where the card is about to unfurl as well, unless the window is cut to what is
  // painted.
  const QRect card = compositing_ == Compositing::present ? widget_->restingCard() : widget_->card();
  if (card.translated(widget_->pos()).contains(*point)) return;
  if (!openedFrom_ || !grown(openedFrom_->icon).contains(*point)) return presses_.deliver();
  // On the icon, whose click is about to close the panel: closed before, the click would open it again.
  // Beside it the press may have been for a neighbour.
  if (openedFrom_->icon.contains(*point)) return;
  scheduler_.after(Timings::clickOnTheIcon, [this, opening = openings_, alive = std::weak_ptr<bool>(alive_)] {
    if (!alive.expired() && shown_ && opening == openings_) presses_.deliver();
  });
}

// Another window has the keyboard.
void PopoverWindow::left() {
  if (!shown_ || scheduler_.now() < openedAt_ + Timings::graceForFocus) return;
  // A panel may take the keyboard when the icon is pressed; the click that follows closes.
  const bool isOnIcon = openedFrom_ && grown(openedFrom_->icon).contains(QCursor::pos());
  if (isOnIcon && isButtonHeld()) return;
  performClose();
}

void PopoverWindow::compositingChanged() {
  if (!shown_ || compositing_ == surroundings_.compositing()) return;
  const auto place = findPlace();
  makeWidget();
  widget_->begin();
  if (place) moveTo(*place);
  appear();
}

std::uint32_t PopoverWindow::nativeWindow() const {
  return shown_ ? static_cast<std::uint32_t>(widget_->effectiveWinId()) : 0U;
}

}  // namespace vorli::ui
