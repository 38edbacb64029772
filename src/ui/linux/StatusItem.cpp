#include "ui/linux/StatusItem.h"

#include "ui/kit/ScreenPlaces.h"
#include "ui/status/StatusMenuPopup.h"

#include <QCursor>
#include <QGuiApplication>
#include <QScreen>

namespace vorli::ui {
namespace {

using ports::StatusClick;

// On X11 the pointer is still where the click was, and its position needs no conversion. Under Wayland, an
// X11 program does not learn the pointer's position.
bool knowsThePointer() {
  return QGuiApplication::platformName() == QLatin1String("xcb") &&
         !qEnvironmentVariableIsSet("WAYLAND_DISPLAY");
}

// Place of the click; empty for one by keyboard, which panels report at 0,0.
std::optional<QPoint> clickedPoint(QPoint native, const QList<ScreenPlace>& screens) {
  if (native.isNull()) return std::nullopt;
  return knowsThePointer() ? QCursor::pos() : logicalPoint(native, screens);
}

QRect topRightOfTheScreen() {
  const auto* screen = QGuiApplication::screenAt(QCursor::pos());
  if (!screen) screen = QGuiApplication::primaryScreen();
  return screen ? QRect(screen->availableGeometry().topRight(), QSize(1, 1)) : QRect();
}

}  // namespace

StatusItem::StatusItem(Scheduler& scheduler, QDBusConnection bus, ManagerSelections& selections,
                       DesktopAppearance& desktop, PanelAppearance& appearance)
    : scheduler_(scheduler),
      bus_(std::move(bus)),
      selections_(selections),
      desktop_(desktop),
      appearance_(appearance),
      throttle_(scheduler, [this](const ports::StatusPicture& picture) { show(picture); }) {}

StatusItem::~StatusItem() = default;

bool StatusItem::create() {
  menu_ = std::make_unique<DBusMenu>(scheduler_, bus_);
  if (menuProvider_) menu_->setProvider(menuProvider_);
  item_ = std::make_unique<StatusNotifierItem>(
      bus_, [this](StatusNotifierItem::Gesture gesture, QPoint native) { gestured(gesture, native); });
  watcher_ = std::make_unique<StatusNotifierWatcher>(bus_, [this] { host_->update(); });
  host_ = std::make_unique<TrayHost>(scheduler_, *watcher_, selections_,
                                     [this](TrayKind tray) { movedTo(tray); });
  watcher_->announce(item_->serviceName());
  showTexts();
  if (shown_) show(*shown_);
  host_->update();
  return true;
}

void StatusItem::setClickHandler(std::function<void(const StatusClick&)> handler) {
  clickHandler_ = std::move(handler);
}

void StatusItem::setMenuProvider(std::function<std::vector<ports::MenuRow>()> provider) {
  menuProvider_ = std::move(provider);
  if (menu_) menu_->setProvider(menuProvider_);
}

void StatusItem::showMenu(std::vector<ports::MenuRow> rows) {
  const bool composited = selections_.isManaged(ManagerSelections::Selection::compositor);
  showStatusMenu(scheduler_, std::move(rows), lastClick_ ? lastClick_->icon : topRightOfTheScreen(),
                 desktop_.isDark() ? Appearance::dark : Appearance::light,
                 composited ? Compositing::present : Compositing::absent);
}

void StatusItem::setToolTip(const std::string& text) {
  title_ = QString::fromStdString(text);
  showTexts();
}

void StatusItem::setAccessibilityLabel(const std::string& text) {
  label_ = QString::fromStdString(text);
  showTexts();
}

void StatusItem::setAccessibilityValue(const std::string& text) {
  sentence_ = QString::fromStdString(text);
  showTexts();
}

void StatusItem::setPicture(const ports::StatusPicture& picture) {
  throttle_.offer(picture);
}

void StatusItem::setAppearanceHandler(std::function<void()> handler) {
  appearanceSubscription_ = appearance_.subscribe(std::move(handler));
}

void StatusItem::gestured(StatusNotifierItem::Gesture gesture, QPoint native) {
  const auto screens = screenPlaces();
  lastClick_.reset();
  if (const auto point = clickedPoint(native, screens)) {
    lastClick_ = ClickAnchor{*point, assumedIconRectangle(*point, screens)};
  }
  using Gesture = StatusNotifierItem::Gesture;
  if (gesture == Gesture::contextMenu) return clicked({StatusClick::Button::right, StatusClick::Control::up});
  const bool control = gesture == Gesture::activate && knowsThePointer() &&
                       QGuiApplication::queryKeyboardModifiers().testFlag(Qt::ControlModifier);
  clicked({StatusClick::Button::left, control ? StatusClick::Control::held : StatusClick::Control::up});
}

void StatusItem::clicked(const StatusClick& click) {
  if (clickHandler_) clickHandler_(click);
}

void StatusItem::movedTo(TrayKind tray) {
  if (tray == TrayKind::xembed) {
    fallback_ = std::make_unique<TrayIconFallback>([this](const StatusClick& click, QPoint point) {
      lastClick_ = ClickAnchor{point, fallback_->geometry()};
      clicked(click);
    });
  } else {
    fallback_.reset();
  }
  showTexts();
  if (shown_) show(*shown_);
  if (trayHandler_) trayHandler_(tray);
}

void StatusItem::show(const ports::StatusPicture& picture) {
  shown_ = picture;
  if (fallback_) {
    fallback_->setPicture(picture);
  } else if (item_) {
    item_->setIcon(pixmaps_.pixmapsOf(picture));
  }
}

void StatusItem::showTexts() {
  if (item_) {
    item_->setToolTip(title_, sentence_);
    item_->setAccessibleDescription(sentence_);
  }
  if (fallback_) fallback_->setTexts(label_, sentence_);
}

}  // namespace vorli::ui
