#pragma once

#include "ports/PowerSources.h"

namespace vorli::fakes {

/// Power sources as a test sets them; none at first.
class PowerSources final : public ports::PowerSources {
 public:
  std::optional<std::string> providingSourceType() override { return sourceType; }

  std::optional<std::string> sourceType;
};

}  // namespace vorli::fakes
