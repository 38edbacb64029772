#pragma once

#include "ports/ProcessUsage.h"

namespace vorli::machost {

/// The process list, read with the system's tool.
class ProcessUsage final : public ports::ProcessUsage {
 public:
  /// Always 0: the system's shares are those of the last minute.
  double prepareReading() override { return 0.0; }
  std::optional<std::vector<ports::ProcessUse>> processes() override;
  /// Always empty: the system does not account for services.
  std::vector<ports::ServiceUse> services() override;
};

}  // namespace vorli::machost
