#include "ui/linux/GlowOverlay.h"

#include "ui/QtColour.h"
#include "ui/linux/GlowBands.h"
#include "ui/linux/MainScreen.h"
#include "ui/linux/QtX11.h"

#include <QGuiApplication>
#include <QScreen>
#include <cmath>
#include <cstdlib>

namespace vorli::ui {
namespace {

constexpr double frameSeconds = 1.0 / 30.0;
// While the opacity creeps: a breath has about 17 levels in 4.5 seconds.
constexpr double slowFrameSeconds = 1.0 / 10.0;
constexpr int creepingLevels = 1;
constexpr double fullLevel = 255.0;
// The window manager tells of a window before it has put it where it belongs.
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
  scheduler_.cancel(timer_);
  frames_ = std::move(frames);
  restsAt_ = restsAt;
  showFrame();
}

void GlowOverlay::remove() {
  scheduler_.cancel(timer_);
  scheduler_.cancel(settling_);
  timer_ = 0;
  frames_ = nullptr;
  shownLevel_ = 0;
  if (bands_) qGuiApp->removeNativeEventFilter(this);
  bands_.reset();
}

void GlowOverlay::showFrame() {
  timer_ = 0;
  if (!frames_) return;
  const double now = scheduler_.now();
  const int before = shownLevel_;
  ++frameCount_;
  show(frames_(now));
  if (now >= restsAt_) return;
  const bool isCreeping = std::isinf(restsAt_) && std::abs(shownLevel_ - before) <= creepingLevels;
  timer_ = scheduler_.after(isCreeping ? slowFrameSeconds : frameSeconds, [this] { showFrame(); });
}

void GlowOverlay::show(const ports::GlowPicture& picture) {
  shownLevel_ = static_cast<int>(std::lround(picture.opacity * fullLevel));
  const bool isLit = shownLevel_ > 0 && selections_.isManaged(ManagerSelections::Selection::compositor);
  if (!isLit) {
    if (bands_) qGuiApp->removeNativeEventFilter(this);
    bands_.reset();
    return;
  }
  const bool isNew = !bands_;
  if (isNew) bands_ = std::make_unique<GlowBands>(screen_, depth_);
  bands_->show(qtColour(picture.colour.withAlpha(1.0)), shownLevel_);
  if (!isNew) return;
  qGuiApp->installNativeEventFilter(this);
  raise();
}

// Without a compositor a see-through window is a black one.
void GlowOverlay::compositingChanged() {
  if (frames_) show(frames_(scheduler_.now()));
}

void GlowOverlay::raise() {
  if (!bands_) return;
  bands_->raise(windowAbove_ ? topLevelAncestor(windowAbove_()) : 0);
}

// Another window came up, and maybe over the bands: the window manager does not look after those.
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
