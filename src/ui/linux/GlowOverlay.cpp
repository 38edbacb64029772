#include "ui/linux/GlowOverlay.h"

#include "ui/kit/QtColour.h"
#include "ui/linux/GlowBands.h"
#include "ui/linux/MainScreen.h"
#include "ui/linux/QtX11.h"

#include <QGuiApplication>
#include <QScreen>
#include <cmath>
#include <utility>

namespace vorli::ui {
namespace {

// The window manager announces a window before it has restacked it.
constexpr double settlingSeconds = 0.25;

QRect rectangle(const ports::ScreenFrame& frame) {
  return QRectF(frame.x, frame.y, frame.width, frame.height).toRect();
}

}  // namespace

GlowOverlay::GlowOverlay(Scheduler& scheduler, ManagerSelections& selections,
                         std::function<std::uint32_t()> windowAbove)
    : scheduler_(scheduler),
      selections_(selections),
      windowAbove_(std::move(windowAbove)),
      frames_(scheduler, [this](const ports::GlowPicture& picture) { return show(picture); }),
      compositing_(selections.subscribe([this] { compositingChanged(); })) {
  watchScreens();
}

GlowOverlay::~GlowOverlay() {
  remove();
}

void GlowOverlay::watchScreens() {
  const auto tell = [this] { screensChanged_.deliver(); };
  const auto follow = [this, tell](QScreen* screen) {
    QObject::connect(screen, &QScreen::geometryChanged, &context_, tell);
  };
  for (auto* screen : QGuiApplication::screens()) follow(screen);
  QObject::connect(qGuiApp, &QGuiApplication::screenAdded, &context_, [follow, tell](QScreen* screen) {
    follow(screen);
    tell();
  });
  QObject::connect(qGuiApp, &QGuiApplication::screenRemoved, &context_, tell);
  QObject::connect(qGuiApp, &QGuiApplication::primaryScreenChanged, &context_, tell);
}

std::optional<ports::ScreenFrame> GlowOverlay::mainScreen() {
  const auto geometry = mainScreenGeometry();
  if (!geometry) return std::nullopt;
  const QRectF frame(*geometry);
  return ports::ScreenFrame{frame.x(), frame.y(), frame.width(), frame.height()};
}

Subscription GlowOverlay::subscribeToScreens(std::function<void()> handler) {
  return screensChanged_.add(std::move(handler));
}

bool GlowOverlay::build(double bandDepthPoints) {
  const auto screen = mainScreenGeometry();
  if (!screen) return false;
  screen_ = *screen;
  depth_ = static_cast<int>(std::lround(bandDepthPoints));
  return true;
}

ports::ScreenFrame GlowOverlay::frame() const {
  const QRectF frame(screen_);
  return {frame.x(), frame.y(), frame.width(), frame.height()};
}

void GlowOverlay::setFrame(const ports::ScreenFrame& frame) {
  screen_ = rectangle(frame);
  if (bands_) bands_->setScreen(screen_);
}

void GlowOverlay::animate(Frames frames, double restsAt) {
  frames_.start(std::move(frames), restsAt);
}

void GlowOverlay::remove() {
  frames_.stop();
  scheduler_.cancel(settling_);
  if (bands_) qGuiApp->removeNativeEventFilter(this);
  bands_.reset();
}

std::optional<double> GlowOverlay::show(const ports::GlowPicture& picture) {
  const int level = static_cast<int>(std::lround(picture.opacity * GlowBands::fullLevel));
  const bool canShow = selections_.isManaged(ManagerSelections::Selection::compositor);
  if (level <= 0 || !canShow) {
    if (bands_) qGuiApp->removeNativeEventFilter(this);
    bands_.reset();
    return canShow ? std::optional<double>(level) : std::nullopt;
  }
  const bool isNew = !bands_;
  if (isNew) bands_ = std::make_unique<GlowBands>(screen_, depth_);
  bands_->show(qtColour(picture.colour.withAlpha(1.0)), level);
  if (!isNew) return level;
  qGuiApp->installNativeEventFilter(this);
  raise();
  return level;
}

// Shows the frame again: without a compositor, a transparent window would be black.
void GlowOverlay::compositingChanged() {
  frames_.showAgain();
}

void GlowOverlay::raise() {
  if (!bands_) return;
  bands_->raise(windowAbove_ ? topLevelAncestor(windowAbove_()) : 0);
}

// Raises the bands when another window may cover them; the window manager does not stack unmanaged ones.
bool GlowOverlay::nativeEventFilter(const QByteArray& type, void* message, qintptr*) {
  if (type != "xcb_generic_event_t" || !bands_) return false;
  const auto* event = static_cast<const xcb_generic_event_t*>(message);
  if ((event->response_type & 0x7f) != XCB_PROPERTY_NOTIFY) return false;
  const auto changed = reinterpret_cast<const xcb_property_notify_event_t*>(event)->atom;
  if (changed != atomNamed(qtConnection(), "_NET_CLIENT_LIST_STACKING")) return false;
  raise();
  scheduler_.cancel(settling_);
  settling_ = scheduler_.after(settlingSeconds, [this] { raise(); });
  return false;
}

}  // namespace vorli::ui
