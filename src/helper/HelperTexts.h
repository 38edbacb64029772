#pragma once

#include <string_view>

namespace vorli {

/// Texts about the daemon's registration that differ from system to system.
struct HelperTexts {
  std::string_view requiresApproval;  // status text
  std::string_view needsInstallation;

  static const HelperTexts macOS;
  static const HelperTexts linuxDesktop;
};

}  // namespace vorli
