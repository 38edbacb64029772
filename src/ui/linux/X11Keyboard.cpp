#include "ui/linux/X11Keyboard.h"

#include "linux/X11Reply.h"

#include <algorithm>
#include <array>

namespace vorli::ui {

namespace {

constexpr xcb_keysym_t symbolReturn = 0xFF0D, symbolTab = 0xFF09, symbolSpace = 0x20;
constexpr xcb_keysym_t altLeft = 0xFFE9, altRight = 0xFFEA, superLeft = 0xFFEB, superRight = 0xFFEC;
constexpr xcb_keysym_t symbolNumLock = 0xFF7F;

constexpr std::uint32_t command = 0x100, shift = 0x200, option = 0x800, control = 0x1000;

/// A key of the ANSI layout: its code, its symbol without Shift, and its key code on a PC keyboard.
struct ANSIKey {
  std::uint32_t code;
  xcb_keysym_t symbol;
  xcb_keycode_t place;
};

constexpr std::array ansiKeys{
    ANSIKey{0, 'a', 38},          ANSIKey{11, 'b', 56},          ANSIKey{8, 'c', 54},
    ANSIKey{2, 'd', 40},          ANSIKey{14, 'e', 26},          ANSIKey{3, 'f', 41},
    ANSIKey{5, 'g', 42},          ANSIKey{4, 'h', 43},           ANSIKey{34, 'i', 31},
    ANSIKey{38, 'j', 44},         ANSIKey{40, 'k', 45},          ANSIKey{37, 'l', 46},
    ANSIKey{46, 'm', 58},         ANSIKey{45, 'n', 57},          ANSIKey{31, 'o', 32},
    ANSIKey{35, 'p', 33},         ANSIKey{12, 'q', 24},          ANSIKey{15, 'r', 27},
    ANSIKey{1, 's', 39},          ANSIKey{17, 't', 28},          ANSIKey{32, 'u', 30},
    ANSIKey{9, 'v', 55},          ANSIKey{13, 'w', 25},          ANSIKey{7, 'x', 53},
    ANSIKey{16, 'y', 29},         ANSIKey{6, 'z', 52},           ANSIKey{29, '0', 19},
    ANSIKey{18, '1', 10},         ANSIKey{19, '2', 11},          ANSIKey{20, '3', 12},
    ANSIKey{21, '4', 13},         ANSIKey{23, '5', 14},          ANSIKey{22, '6', 15},
    ANSIKey{26, '7', 16},         ANSIKey{28, '8', 17},          ANSIKey{25, '9', 18},
    ANSIKey{49, symbolSpace, 65}, ANSIKey{36, symbolReturn, 36}, ANSIKey{48, symbolTab, 23},
};

}  // namespace

std::optional<X11Keyboard> X11Keyboard::read(xcb_connection_t* connection) {
  const auto* setup = xcb_get_setup(connection);
  const auto count = static_cast<std::uint8_t>(setup->max_keycode - setup->min_keycode + 1);
  const auto keysAsked = xcb_get_keyboard_mapping(connection, setup->min_keycode, count);
  const auto modifiersAsked = xcb_get_modifier_mapping(connection);
  const linuxhost::X11Reply<xcb_get_keyboard_mapping_reply_t> keys(
      xcb_get_keyboard_mapping_reply(connection, keysAsked, nullptr));
  const linuxhost::X11Reply<xcb_get_modifier_mapping_reply_t> modifiers(
      xcb_get_modifier_mapping_reply(connection, modifiersAsked, nullptr));
  if (!keys || !modifiers) return std::nullopt;

  X11Keyboard keyboard;
  keyboard.first_ = setup->min_keycode;
  keyboard.perKey_ = keys->keysyms_per_keycode;
  const auto* symbols = xcb_get_keyboard_mapping_keysyms(keys.get());
  keyboard.symbols_.assign(symbols, symbols + xcb_get_keyboard_mapping_keysyms_length(keys.get()));
  keyboard.keysPerModifier_ = modifiers->keycodes_per_modifier;
  const auto* codes = xcb_get_modifier_mapping_keycodes(modifiers.get());
  keyboard.modifiers_.assign(codes, codes + xcb_get_modifier_mapping_keycodes_length(modifiers.get()));
  return keyboard;
}

bool X11Keyboard::gives(xcb_keycode_t key, xcb_keysym_t symbol) const {
  for (std::size_t column = 0; column < perKey_ && key >= first_; ++column) {
    const std::size_t at = (key - first_) * perKey_ + column;
    if (at < symbols_.size() && symbols_[at] == symbol) return true;
  }
  return false;
}

std::vector<xcb_keycode_t> X11Keyboard::keysWith(xcb_keysym_t symbol, std::size_t column) const {
  std::vector<xcb_keycode_t> found;
  for (std::size_t i = column; i < symbols_.size(); i += perKey_) {
    if (symbols_[i] == symbol) found.push_back(static_cast<xcb_keycode_t>(first_ + i / perKey_));
  }
  return found;
}

std::vector<xcb_keycode_t> X11Keyboard::keysFor(std::uint32_t ansiKeyCode) const {
  const auto key = std::ranges::find(ansiKeys, ansiKeyCode, &ANSIKey::code);
  if (key == ansiKeys.end()) return {};
  // Column 0 is the first layout without Shift, column 2 the second.
  for (const std::size_t column : {0, 2, 1, 3, 4, 5}) {
    if (column >= perKey_) continue;
    if (auto found = keysWith(key->symbol, column); !found.empty()) return found;
  }
  return {key->place};
}

std::optional<char> X11Keyboard::characterFor(std::uint32_t ansiKeyCode) {
  const auto key = std::ranges::find(ansiKeys, ansiKeyCode, &ANSIKey::code);
  if (key == ansiKeys.end() || key->symbol <= symbolSpace || key->symbol > 'z') return std::nullopt;
  return static_cast<char>(key->symbol);
}

std::uint16_t X11Keyboard::modifierOf(std::initializer_list<xcb_keysym_t> symbols) const {
  for (std::size_t i = 0; i < modifiers_.size() && keysPerModifier_ > 0; ++i) {
    const auto key = modifiers_[i];
    if (key == 0) continue;
    if (std::ranges::any_of(symbols, [&](xcb_keysym_t symbol) { return gives(key, symbol); }))
      return static_cast<std::uint16_t>(1U << (i / keysPerModifier_));
  }
  return 0;
}

std::optional<std::uint16_t> X11Keyboard::modifiersFor(std::uint32_t mask) const {
  std::uint16_t result = 0;
  if (mask & shift) result |= XCB_MOD_MASK_SHIFT;
  if (mask & control) result |= XCB_MOD_MASK_CONTROL;
  const auto add = [&](std::initializer_list<xcb_keysym_t> symbols) {
    const auto bit = modifierOf(symbols);
    result |= bit;
    return bit != 0;
  };
  if ((mask & option) && !add({altLeft, altRight})) return std::nullopt;
  if ((mask & command) && !add({superLeft, superRight})) return std::nullopt;
  return result;
}

std::uint16_t X11Keyboard::numLock() const {
  return modifierOf({symbolNumLock});
}

}  // namespace vorli::ui
