#pragma once

#include <string_view>

namespace vorli {

/// Texts of the status item and its menu that differ from system to system.
struct StatusTexts {
  // Beginnings of the spoken state, before the percentage.
  std::string_view healthy;
  std::string_view warming;
  std::string_view critical;
  // Titles of rows.
  std::string_view restartDock;
  std::string_view restartFinder;
  std::string_view openLoginItems;

  static const StatusTexts macOS;
  static const StatusTexts linuxDesktop;
};

}  // namespace vorli
