#pragma once

#include <string_view>

namespace vorli {

/// Texts of the program's notices.
struct NudgeTexts {
  std::string_view nudgeTitle;
  std::string_view nudgeBody;
  std::string_view polishNow;

  std::string_view helperBrokenTitle;
  std::string_view helperBrokenBody;
  std::string_view reinstall;
  std::string_view openSettings;

  static const NudgeTexts macOS;
  static const NudgeTexts linuxDesktop;
};

}  // namespace vorli
