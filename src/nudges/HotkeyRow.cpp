#include "nudges/HotkeyRow.h"

#include "base/UnicodeText.h"
#include "nudges/HotkeyPills.h"

#include <algorithm>
#include <cstdint>

namespace vorli {

namespace {

constexpr std::uint16_t escape = 53;

struct ModifierName {
  std::uint64_t flag;
  std::string_view name;
};

constexpr ModifierName modifierNames[] = {
    {0x40000, "ctrl"}, {0x80000, "opt"}, {0x20000, "shift"}, {0x100000, "cmd"}};
constexpr std::uint64_t modifierMask = 0x1E0000;

struct KeyName {
  std::uint16_t code;
  std::string_view name;
};

constexpr KeyName keyNames[] = {
    {36, "↩"},  {48, "⇥"},  {49, "Space"}, {51, "⌫"},  {115, "↖"}, {116, "⇞"}, {117, "⌦"},
    {119, "↘"}, {121, "⇟"}, {123, "←"},    {124, "→"}, {125, "↓"}, {126, "↑"},
};

// Returns the name of a key; empty for one that cannot be part of a combination, such as punctuation and the
// function keys.
std::string nameOf(const ports::KeyDown& key) {
  const auto named = std::ranges::find(keyNames, key.keyCode, &KeyName::code);
  if (named != std::end(keyNames)) return std::string(named->name);
  return key.beginsWithLetterOrNumber ? uppercased(key.charactersIgnoringModifiers) : std::string();
}

}  // namespace

void HotkeyRow::startRecording() {
  if (isRecording) return;
  isRecording = true;
  monitor_ = keys_.addLocalKeyDownMonitor([this](const ports::KeyDown& key) { keyDown(key); });
}

void HotkeyRow::stopRecording() {
  isRecording = false;
  monitor_.reset();
}

void HotkeyRow::keyDown(const ports::KeyDown& key) {
  if (key.keyCode == escape) return stopRecording();
  // A lone letter as a global key would take that letter from every program.
  if ((key.modifierFlags & modifierMask) == 0) return;
  const std::string name = nameOf(key);
  if (name.empty()) return;

  std::string combo;
  for (const auto& modifier : modifierNames) {
    if (key.modifierFlags & modifier.flag) combo.append(modifier.name).append("+");
  }
  settings_.globalHotkeyCombo.set(combo + name);
  stopRecording();
}

std::optional<std::string_view> HotkeyRow::prompt() const {
  if (!isRecording) return std::nullopt;
  return "Press a combination…";
}

std::vector<std::string> HotkeyRow::pills() const {
  return hotkeyPills(settings_.globalHotkeyCombo().get());
}

std::string HotkeyRow::accessibilityValue() const {
  if (isRecording) return "Recording. Press a key combination, or press Escape to cancel.";
  const auto& combo = settings_.globalHotkeyCombo().get();
  return combo.empty() ? "No shortcut set" : "Current shortcut: " + combo;
}

std::string_view HotkeyRow::accessibilityHint() const {
  return isRecording ? "Press Escape to cancel" : "Activates to record a new keyboard shortcut";
}

}  // namespace vorli
