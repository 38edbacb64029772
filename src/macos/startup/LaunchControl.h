#pragma once

#include "ports/LaunchControl.h"

namespace vorli::machost {

/// launchd, controlled with its command-line tool.
class LaunchControl final : public ports::LaunchControl {
 public:
  void load(const std::string& path) override;
  void unload(const std::string& path) override;
  /// Does nothing: launchd reads a file when it is loaded.
  void reload() override;
};

}  // namespace vorli::machost
