#pragma once

#include "ports/ProcessUsage.h"

namespace vorli::fakes {

/// Usage of processes as a test sets it.
class ProcessUsage final : public ports::ProcessUsage {
 public:
  double prepareReading() override { return secondsUntilReading; }
  std::optional<std::vector<ports::ProcessUse>> processes() override {
    ++looks;
    return rows;
  }
  std::vector<ports::ServiceUse> services() override { return serviceRows; }

  std::optional<std::vector<ports::ProcessUse>> rows = std::vector<ports::ProcessUse>();
  std::vector<ports::ServiceUse> serviceRows;
  double secondsUntilReading = 0.0;
  int looks = 0;
};

}  // namespace vorli::fakes
