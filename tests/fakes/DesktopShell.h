#pragma once

#include "base/OnceReply.h"
#include "ports/DesktopShell.h"

#include <string>
#include <utility>

namespace vorli::fakes {

/// Counts the requested restarts.
class DesktopShell final : public ports::DesktopShell {
 public:
  void restartDock() override { ++dockRestarts; }
  void restartFinder(OnceReply<std::string> cannotBeAsked) override {
    ++finderRestarts;
    cannotBeAsked_ = std::move(cannotBeAsked);
  }

  /// Reports that the file manager cannot be asked to quit.
  void refuse(const std::string& name) { std::move(cannotBeAsked_)(name); }

  int dockRestarts = 0;
  int finderRestarts = 0;

 private:
  OnceReply<std::string> cannotBeAsked_;
};

}  // namespace vorli::fakes
