#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace vorli {

/// A key combination in the form that the system takes.
struct HotkeyCombo {
  static constexpr std::uint32_t command = 0x100;
  static constexpr std::uint32_t shift = 0x200;
  static constexpr std::uint32_t option = 0x800;
  static constexpr std::uint32_t control = 0x1000;

  std::uint32_t keyCode = 0;    // code of a key on the ANSI layout
  std::uint32_t modifiers = 0;  // a combination of the bits above

  bool operator==(const HotkeyCombo&) const = default;
};

/// Returns the code of a key on the ANSI layout; empty when the name is not in the table. Names are in upper
/// case.
std::optional<std::uint32_t> keyCode(std::string_view name);

/// Reads a combination such as "opt+shift+C", in any order and any letter case. Empty when it has no key or
/// no modifier. If there are several keys, the last one counts; unknown words are ignored.
std::optional<HotkeyCombo> parseCombo(std::string_view text);

}  // namespace vorli
