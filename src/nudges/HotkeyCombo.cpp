#include "nudges/HotkeyCombo.h"

#include "base/UnicodeText.h"

#include <algorithm>
#include <string>

namespace vorli {

namespace {

struct NamedBits {
  std::string_view name;
  std::uint32_t value;
};

constexpr NamedBits modifierTable[] = {
    {"cmd", HotkeyCombo::command}, {"command", HotkeyCombo::command}, {"meta", HotkeyCombo::command},
    {"opt", HotkeyCombo::option},  {"alt", HotkeyCombo::option},      {"option", HotkeyCombo::option},
    {"shift", HotkeyCombo::shift}, {"ctrl", HotkeyCombo::control},    {"control", HotkeyCombo::control},
};

constexpr NamedBits keyTable[] = {
    {"A", 0},  {"B", 11},     {"C", 8},       {"D", 2},      {"E", 14}, {"F", 3},    {"G", 5},
    {"H", 4},  {"I", 34},     {"J", 38},      {"K", 40},     {"L", 37}, {"M", 46},   {"N", 45},
    {"O", 31}, {"P", 35},     {"Q", 12},      {"R", 15},     {"S", 1},  {"T", 17},   {"U", 32},
    {"V", 9},  {"W", 13},     {"X", 7},       {"Y", 16},     {"Z", 6},  {"0", 29},   {"1", 18},
    {"2", 19}, {"3", 20},     {"4", 21},      {"5", 23},     {"6", 22}, {"7", 26},   {"8", 28},
    {"9", 25}, {"SPACE", 49}, {"RETURN", 36}, {"ENTER", 36}, {"↩", 36}, {"TAB", 48}, {"⇥", 48},
};

template <typename Table>
std::optional<std::uint32_t> find(const Table& table, std::string_view name) {
  const auto found = std::ranges::find(table, name, &NamedBits::name);
  if (found == std::end(table)) return std::nullopt;
  return found->value;
}

}  // namespace

std::optional<std::uint32_t> keyCode(std::string_view name) {
  return find(keyTable, name);
}

std::optional<HotkeyCombo> parseCombo(std::string_view text) {
  std::uint32_t modifiers = 0;
  std::optional<std::uint32_t> key;
  while (!text.empty()) {
    const auto end = std::min(text.find('+'), text.size());
    const std::string word = lowercased(trimmed(text.substr(0, end)));
    text.remove_prefix(std::min(end + 1, text.size()));
    if (const auto bit = find(modifierTable, word)) {
      modifiers |= *bit;
    } else if (const auto code = keyCode(uppercased(word))) {
      key = code;
    }
  }
  if (!key || modifiers == 0) return std::nullopt;
  return HotkeyCombo{*key, modifiers};
}

}  // namespace vorli
