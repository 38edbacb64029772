#pragma once

#include <QPoint>
#include <QSocketNotifier>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

struct xcb_connection_t;

namespace vorli::ui {

/// Reports every press of the left and the right mouse button on the whole X11 desktop while it listens,
/// without taking it from the window that it was meant for. Uses its own connection, which is opened by
/// `prepare` or the first `listen` and kept: opening one takes longer than a frame may. Reports nothing
/// without X11 or without its input extension.
class RawPresses {
 public:
  using Handler = std::function<void(QPoint native)>;

  explicit RawPresses(Handler handler);
  ~RawPresses();
  RawPresses(const RawPresses&) = delete;
  RawPresses& operator=(const RawPresses&) = delete;

  /// Opens the connection, so that the first `listen` need not.
  void prepare();
  /// Starts reporting presses.
  void listen();
  /// Stops reporting presses, including those that happened before this call.
  void stop();

 private:
  void connect();
  void select(std::uint32_t events);
  void process();
  bool takePresses();
  bool takePress();
  std::optional<QPoint> pointer();

  Handler handler_;
  xcb_connection_t* connection_ = nullptr;
  unsigned root_ = 0;
  unsigned selection_ = 0;  // sequence number of the last request that selected events
  bool listens_ = false;
  std::unique_ptr<QSocketNotifier> notifier_;
};

}  // namespace vorli::ui
