#pragma once

#include "ports/UpdateFramework.h"

#include <functional>
#include <string>

namespace vorli {

/// Sorts the updater's results into successful and failed checks.
class UpdaterDelegateCoordinator final : public ports::UpdaterDelegate {
 public:
  std::function<void()> onFinishedLoadingAppcast;
  std::function<void(const std::string&)> onError;

  void didFinishLoadingAppcast() override;
  void didAbortWithError(int code, std::string description) override;
};

}  // namespace vorli
