#pragma once

#include "base/Scheduler.h"

#include <QSocketNotifier>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>
#include <xcb/xcb.h>

namespace vorli::ui {

/// Grabs one key combination on the whole X11 desktop, over its own connection. Ignores Caps Lock and Num
/// Lock, and follows changes of the keyboard's layout. Main thread.
class X11HotkeyGrab {
 public:
  /// `changed` gets the error code when a change of the keyboard costs the key, and 0 when another one gives
  /// it back.
  X11HotkeyGrab(Scheduler& scheduler, std::function<void()> pressed,
                std::function<void(std::int32_t)> changed);
  ~X11HotkeyGrab();
  X11HotkeyGrab(const X11HotkeyGrab&) = delete;
  X11HotkeyGrab& operator=(const X11HotkeyGrab&) = delete;

  /// Grabs the combination completely or not at all. Returns 0, an error of the port or the X server's error
  /// code; 10 means that another program has the key. The key code and the mask are those of the port.
  std::int32_t grab(std::uint32_t keyCode, std::uint32_t modifiers);
  void release();

 private:
  struct Wanted {
    std::uint32_t keyCode;
    std::uint32_t modifiers;
  };

  bool connect();
  std::int32_t grabWanted();
  std::int32_t grabKey(xcb_keycode_t key, std::uint16_t modifiers) const;
  void ungrab();
  void process();
  bool readEvents();
  void keyPressed(const xcb_key_press_event_t& press);
  void followKeyboard();
  void grabAgain();

  Scheduler& scheduler_;
  std::function<void()> pressed_;
  std::function<void(std::int32_t)> changed_;
  xcb_connection_t* connection_ = nullptr;
  xcb_window_t root_ = XCB_NONE;
  std::optional<Wanted> wanted_;
  std::int32_t status_ = 0;  // result of the last attempt to grab it
  Scheduler::TimerId secondTry_ = 0;
  std::vector<xcb_keycode_t> grabbed_;
  std::uint16_t grabbedModifiers_ = 0;
  std::uint16_t ignoredModifiers_ = 0;
  xcb_timestamp_t released_ = 0;  // server time of the last release
  std::unique_ptr<QSocketNotifier> notifier_;
};

}  // namespace vorli::ui
