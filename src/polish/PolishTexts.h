#pragma once

#include <string_view>

namespace vorli {

/// Sentences at the end of a polish.
struct PolishTexts {
  std::string_view approveHelper;
  /// Part of `approveHelper` by which the popover recognises it.
  std::string_view approveHelperWords;
  std::string_view helperOutOfReach;
  std::string_view helperOutOfReachWords;
  std::string_view soundSpared;
  std::string_view polished;

  static const PolishTexts macOS;
  static const PolishTexts linuxDesktop;
};

}  // namespace vorli
