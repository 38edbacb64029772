#pragma once

#include "base/Published.h"
#include "base/Subscription.h"
#include "ports/KeyMonitor.h"
#include "settings/AppSettings.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vorli {

/// The row of the settings that shows the global key and records a new one. It only stores the combination in
/// the setting; the key is registered elsewhere, by an observer of the setting. Main thread.
class HotkeyRow {
 public:
  HotkeyRow(AppSettings& settings, ports::KeyMonitor& keys) : settings_(settings), keys_(keys) {}

  Published<bool, HotkeyRow> isRecording{false};

  /// Handles a press of the row. Captures every key until a combination is complete or Escape is pressed.
  void startRecording();
  void stopRecording();

  /// Text shown instead of the pills while a combination is recorded.
  std::optional<std::string_view> prompt() const;
  std::vector<std::string> pills() const;
  std::string accessibilityValue() const;
  std::string_view accessibilityHint() const;

 private:
  void keyDown(const ports::KeyDown& key);

  AppSettings& settings_;
  ports::KeyMonitor& keys_;
  std::optional<Subscription> monitor_;
};

}  // namespace vorli
