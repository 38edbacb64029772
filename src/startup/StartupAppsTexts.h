#pragma once

#include <string_view>

namespace vorli {

/// Texts of the list that differ from system to system.
struct StartupAppsTexts {
  std::string_view looking;
  std::string_view nothing;
  /// Footer text after the number of hidden items.
  std::string_view hiddenItems;
  // Texts of the button of an item without a file.
  std::string_view managedToolTip;
  std::string_view managedHint;
  /// True where the user approves the helper in the system's own settings, which always open; false where the
  /// system asks for a password.
  bool isApprovedElsewhere;
  // Texts for a helper that waits for approval: before the item's name, after it in the announcement, and on
  // the button.
  std::string_view notApproved;
  std::string_view notApprovedSpoken;
  std::string_view approve;
  std::string_view approveLabel;
  /// Replaces `notApprovedSpoken` after the item's name when the user did not enter the password. Empty on a
  /// system that asks for none.
  std::string_view declinedSpoken;

  static const StartupAppsTexts macOS;
  static const StartupAppsTexts linuxDesktop;
};

}  // namespace vorli
