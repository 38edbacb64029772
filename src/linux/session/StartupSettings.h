#pragma once

#include "ports/StartupSettings.h"

#include <string>
#include <utility>
#include <vector>

namespace vorli::linuxhost {

/// The startup page of the desktop that is running.
class StartupSettings final : public ports::StartupSettings {
 public:
  /// `desktops` are the names in XDG_CURRENT_DESKTOP.
  explicit StartupSettings(std::vector<std::string> desktops) : desktops_(std::move(desktops)) {}

  void open() override;

 private:
  const std::vector<std::string> desktops_;
};

/// Returns the command lines that show the page in these desktops, the best first.
std::vector<std::vector<std::string>> startupPages(const std::vector<std::string>& desktops);

}  // namespace vorli::linuxhost
