#include "ui/popover/PopoverPanel.h"

#include "ui/kit/ScreenPlaces.h"

#include <QGuiApplication>
#include <QScreen>
#include <utility>

namespace vorli::ui {
namespace {

struct PopoverPanelTimings {
  static constexpr double keepPictures = 60.0;
  static constexpr double untilPrepared = 2.0;  // from the mounting; the launch is over by then
};

}  // namespace

PopoverPanel::PopoverPanel(Scheduler& scheduler, ItemPlace itemPlace, const WindowSurroundings& surroundings)
    : scheduler_(scheduler),
      itemPlace_(std::move(itemPlace)),
      surroundings_(surroundings),
      appearance_(surroundings.subscribeToAppearance([this] {
        if (widget_) widget_->scene().setAppearance(surroundings_.appearance());
      })) {}

void PopoverPanel::mount(PopoverView& view) {
  view_ = &view;
  scheduler_.cancel(prepareTimer_);
  prepareTimer_ = scheduler_.after(
      PopoverPanelTimings::untilPrepared,
      [this] {
        prepareTimer_ = 0;
        prepare();
      },
      Scheduler::Precision::coarse);
}

void PopoverPanel::prepare() {
  if (widget_) return;
  makeWidget();
  widget_->winId();
  widget_->prepare();
}

void PopoverPanel::unmount() {
  if (shown_) hide();
  scheduler_.cancel(std::exchange(forgetTimer_, 0));
  scheduler_.cancel(std::exchange(prepareTimer_, 0));
  widget_.reset();
  view_ = nullptr;
}

bool PopoverPanel::hasPlace() const {
  return view_ && !QGuiApplication::screens().isEmpty();
}

bool PopoverPanel::show() {
  if (shown_) return true;
  if (!view_) return false;
  openedFrom_ = itemPlace_();
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

std::optional<PopoverPlace> PopoverPanel::findPlace() const {
  const auto screens = screenPlaces();
  return popoverPlace(openedFrom_, openedFrom_ ? panelOf(*openedFrom_, screens) : std::nullopt, screens);
}

void PopoverPanel::makeWidget() {
  compositing_ = surroundings_.compositing();
  widget_ = std::make_unique<PopoverWidget>(
      scheduler_, *view_, compositing_,
      PopoverWidget::Callbacks{.escape = [this] { performClose(); },
                               .left = [this] { left(); },
                               .card = [this](const QRect& card) { shapeTo(card); }});
  equip(*widget_);
  widget_->scene().setAppearance(surroundings_.appearance());
  widget_->scene().setCardHeight(size_.height);
}

void PopoverPanel::appear() {
  equipForShowing(*widget_);
  widget_->show();
  widget_->raise();
  shapeTo(widget_->card());
  widget_->paintAhead();
  const auto again = [this] { placeAgain(); };
  screenChanges_ = {QObject::connect(widget_->screen(), &QScreen::geometryChanged, widget_.get(), again),
                    QObject::connect(qGuiApp, &QGuiApplication::screenRemoved, widget_.get(), again)};
}

void PopoverPanel::moveTo(const PopoverPlace& place) {
  widget_->scene().setEdge(place.edge);
  const int x = place.left - PopoverWidget::margins.left();
  const int y = place.edge == PopoverScene::Edge::top
                    ? place.y - PopoverWidget::margins.top()
                    : place.y - (widget_->height() - static_cast<int>(CardPainter::bottomReach));
  widget_->move(x, y);
}

// Places the popover again after a screen was resized or removed: the panel and the icon have moved, or are
// gone.
void PopoverPanel::placeAgain() {
  if (!shown_) return;
  openedFrom_ = itemPlaceAfterChange();
  if (const auto place = findPlace()) moveTo(*place);
}

void PopoverPanel::performClose() {
  if (!shown_) return;
  if (shouldClose_ && !shouldClose_()) return;
  hide();
}

void PopoverPanel::hide() {
  shown_ = false;
  for (const auto& change : screenChanges_) QObject::disconnect(change);
  widget_->hide();
  widget_->end();
  forgetLater();
}

// Drops the pictures after a while: they take megabytes on a dense screen, but only milliseconds to redraw.
void PopoverPanel::forgetLater() {
  forgetTimer_ = scheduler_.after(
      PopoverPanelTimings::keepPictures,
      [this] {
        forgetTimer_ = 0;
        widget_->forgetPictures();
      },
      Scheduler::Precision::coarse);
}

void PopoverPanel::setContentSize(ports::PopoverSize size) {
  size_ = size;
  if (widget_) widget_->scene().setCardHeight(size.height);
}

void PopoverPanel::animateContentSize(ports::PopoverSize size, const Animation& animation) {
  if (size == size_) return;
  if (!shown_) return setContentSize(size);
  size_ = size;
  widget_->scene().moveCard(size.height, animation);
}

void PopoverPanel::compositingChanged() {
  if (!shown_ || compositing_ == surroundings_.compositing()) return;
  const auto place = findPlace();
  makeWidget();
  widget_->begin();
  if (place) moveTo(*place);
  appear();
}

}  // namespace vorli::ui
