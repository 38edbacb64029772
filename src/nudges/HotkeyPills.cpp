#include "nudges/HotkeyPills.h"

#include "base/UnicodeText.h"

#include <algorithm>

namespace vorli {

namespace {

std::string pillText(std::string_view piece) {
  const std::string word = lowercased(piece);
  if (word == "opt" || word == "alt" || word == "option") return "⌥";
  if (word == "shift") return "⇧";
  if (word == "cmd" || word == "command" || word == "meta") return "⌘";
  if (word == "ctrl" || word == "control") return "⌃";
  return uppercased(piece);
}

}  // namespace

std::vector<std::string> hotkeyPills(std::string_view combo) {
  std::vector<std::string> pills;
  while (!combo.empty()) {
    const auto end = std::min(combo.find('+'), combo.size());
    if (end > 0) pills.push_back(pillText(combo.substr(0, end)));
    combo.remove_prefix(std::min(end + 1, combo.size()));
  }
  return pills;
}

}  // namespace vorli
