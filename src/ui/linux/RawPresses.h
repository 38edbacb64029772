#pragma once

#include <QPoint>
#include <QSocketNotifier>
#include <functional>
#include <memory>

struct xcb_connection_t;

namespace vorli::ui {

/// Tells of every press of the left and the right mouse button on the whole X11 desktop while it exists,
/// without taking it from the window that it was meant for. The events come over a connection of its own; of
/// presses before it was made none comes. Without X11, or without its input extension, nothing comes.
class RawPresses {
 public:
  using Handler = std::function<void(QPoint native)>;

  explicit RawPresses(Handler handler);
  ~RawPresses();
  RawPresses(const RawPresses&) = delete;
  RawPresses& operator=(const RawPresses&) = delete;

 private:
  bool select();
  void process();
  bool takePress();
  QPoint pointer();

  Handler handler_;
  xcb_connection_t* connection_ = nullptr;
  unsigned root_ = 0;
  std::unique_ptr<QSocketNotifier> notifier_;
};

}  // namespace vorli::ui
