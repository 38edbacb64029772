#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <vector>
#include <xcb/xcb.h>

namespace vorli::ui {

/// Snapshot of the keyboard mapping of an X server.
class X11Keyboard {
 public:
  /// Empty when the server does not answer. Blocks for one round trip.
  static std::optional<X11Keyboard> read(xcb_connection_t* connection);

  /// Keys that produce the character of a key of the ANSI layout: in the user's first layout, else in the
  /// second one, else together with other keys. If there are none, the key at the same physical place.
  std::vector<xcb_keycode_t> keysFor(std::uint32_t ansiKeyCode) const;

  /// Character of a key of the ANSI layout without Shift; empty for keys that the port does not know, and for
  /// those without a letter or a digit.
  static std::optional<char> characterFor(std::uint32_t ansiKeyCode);

  /// The server's modifier bits for a mask of the port. Empty when the keyboard lacks one of them.
  std::optional<std::uint16_t> modifiersFor(std::uint32_t mask) const;

  /// Modifier bit of Num Lock; 0 without one.
  std::uint16_t numLock() const;

 private:
  std::uint16_t modifierOf(std::initializer_list<xcb_keysym_t> symbols) const;
  bool gives(xcb_keycode_t key, xcb_keysym_t symbol) const;
  std::vector<xcb_keycode_t> keysWith(xcb_keysym_t symbol, std::size_t column) const;

  xcb_keycode_t first_ = 8;
  std::size_t perKey_ = 0;
  std::vector<xcb_keysym_t> symbols_;  // `perKey_` for each key from `first_` on
  std::size_t keysPerModifier_ = 0;
  std::vector<xcb_keycode_t> modifiers_;  // eight groups of `keysPerModifier_`
};

}  // namespace vorli::ui
