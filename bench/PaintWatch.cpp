#include "bench/PaintWatch.h"

#include <QApplication>
#include <QEvent>
#include <QWidget>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <xcb/xcb.h>

namespace vorli::bench {
namespace {

long long microseconds() {
  const auto now = std::chrono::steady_clock::now().time_since_epoch();
  return std::chrono::duration_cast<std::chrono::microseconds>(now).count();
}

// Waits until the X server has handled all earlier requests.
void roundTrip() {
  auto* connection = qApp->nativeInterface<QNativeInterface::QX11Application>()->connection();
  std::free(xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
}

}  // namespace

PaintWatch::PaintWatch() {
  qApp->installEventFilter(this);
}

bool PaintWatch::eventFilter(QObject* watched, QEvent* event) {
  auto* widget = qobject_cast<QWidget*>(watched);
  if (event->type() != QEvent::Paint || !widget || !widget->isWindow()) return false;
  watched->event(event);
  const auto painted = microseconds();
  // The painted frame is sent to the X server when this event has been handled.
  QMetaObject::invokeMethod(
      this,
      [painted, size = widget->size()] {
        roundTrip();
        std::printf("frame %lld %lld %dx%d\n", painted, microseconds(), size.width(), size.height());
        std::fflush(stdout);
      },
      Qt::QueuedConnection);
  return true;
}

}  // namespace vorli::bench
