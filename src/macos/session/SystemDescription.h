#pragma once

#include "ports/SystemDescription.h"

namespace vorli::machost {

/// The system's version numbers, and the model that the kernel reports.
class SystemDescription final : public ports::SystemDescription {
 public:
  /// Major, minor and patch, without a name.
  ports::SystemVersion systemVersion() override;
  std::optional<std::string> hardwareModel() override;
};

}  // namespace vorli::machost
