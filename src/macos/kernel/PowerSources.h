#pragma once

#include "ports/PowerSources.h"

namespace vorli::machost {

/// The power source that the system reports.
class PowerSources final : public ports::PowerSources {
 public:
  std::optional<std::string> providingSourceType() override;
};

}  // namespace vorli::machost
