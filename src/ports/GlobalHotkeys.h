#pragma once

#include "base/Subscription.h"

#include <cstdint>
#include <expected>
#include <functional>

namespace vorli::ports {

/// Identifies a key combination to the system.
struct HotkeyIdentifier {
  std::uint32_t signature = 0;  // four characters
  std::uint32_t id = 0;

  bool operator==(const HotkeyIdentifier&) const = default;
};

/// Key combinations that reach the program wherever the focus is; one at a time. Main thread. No call waits
/// for the user; a call may wait a millisecond for the display server.
class GlobalHotkeys {
 public:
  virtual ~GlobalHotkeys() = default;

  /// `pressed` runs on the main thread, once for each press of the registered combination, until the token is
  /// destroyed. Holding a key down counts as one press.
  virtual Subscription installEventHandler(std::function<void()> pressed) = 0;

  /// Registers the key with this code of the ANSI layout and the modifiers of the mask: 0x100 Command, 0x200
  /// Shift, 0x800 Option, 0x1000 Control. The registration ends with the token. Error: the system's error
  /// code, or one of those below.
  [[nodiscard]] virtual std::expected<Subscription, std::int32_t> registerEventHotKey(
      std::uint32_t keyCode, std::uint32_t modifiers, HotkeyIdentifier identifier) = 0;

  /// `changed` runs on the main thread, never inside a call of this port, when a registration that first
  /// succeeded stops working, because the user declined, the keyboard changed or the desktop's service ended,
  /// and when it works again. Its argument is the system's error code, or 0 when the key works.
  virtual void setStatusHandler(std::function<void(std::int32_t)> changed) = 0;
};

/// The desktop offers no global keys.
inline constexpr std::int32_t hotkeyUnavailable = -1;
/// The keyboard has no such key or modifier.
inline constexpr std::int32_t hotkeyNotOnKeyboard = -2;
/// The user or the desktop declined the key.
inline constexpr std::int32_t hotkeyDeclined = -3;

}  // namespace vorli::ports
