#pragma once

#include "ports/CrashCapture.h"

#include <functional>
#include <vector>

namespace vorli::fakes {

/// Records the plans and catches nothing.
class CrashCapture final : public ports::CrashCapture {
 public:
  void install(const ports::CrashCapturePlan& plan) override {
    plans.push_back(plan);
    if (onInstall) onInstall();
  }

  std::vector<ports::CrashCapturePlan> plans;
  std::function<void()> onInstall;
};

}  // namespace vorli::fakes
