#pragma once

#include <string_view>

namespace vorli {

/// Texts of the popover that differ from system to system.
struct PopoverTexts {
  // Sentences for the states of the ring, and while a polish is running.
  std::string_view healthy;
  std::string_view warming;
  std::string_view critical;
  std::string_view polishing;
  // Tool tips of the button: ready, not needed and without the helper.
  std::string_view polishToolTip;
  std::string_view nothingToPolishToolTip;
  std::string_view helperAwayToolTip;
  std::string_view nothingToPolishHint;
  std::string_view openSettingsHint;

  static const PopoverTexts macOS;
  static const PopoverTexts linuxDesktop;
};

}  // namespace vorli
