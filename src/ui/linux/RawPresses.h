#pragma once

#include <QPoint>
#include <QSocketNotifier>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

struct xcb_connection_t;

namespace vorli::ui {

/// Tells of every press of the left and the right mouse button on the whole X11 desktop while it listens,
/// without taking it from the window that it was meant for. The events come over a connection of its own,
/// which is made by the first `listen` and kept: to make one takes longer than a frame may. Without X11, or
/// without its input extension, nothing comes.
class RawPresses {
 public:
  using Handler = std::function<void(QPoint native)>;

  explicit RawPresses(Handler handler);
  ~RawPresses();
  RawPresses(const RawPresses&) = delete;
  RawPresses& operator=(const RawPresses&) = delete;

  /// Presses from now on.
  void listen();
  /// No press is told any more, even if it happened before.
  void stop();

 private:
  void connect();
  void select(std::uint32_t events);
  void process();
  bool takePress();
  std::optional<QPoint> pointer();

  Handler handler_;
  xcb_connection_t* connection_ = nullptr;
  unsigned root_ = 0;
  unsigned selection_ = 0;  // the number of the request that chose what comes
  bool listens_ = false;
  std::unique_ptr<QSocketNotifier> notifier_;
};

}  // namespace vorli::ui
