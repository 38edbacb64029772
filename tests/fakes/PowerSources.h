#pragma once

#include "ports/PowerSources.h"

#include <vector>

namespace vorli::fakes {

/// Power supplies as a test sets them; none at first.
class PowerSources final : public ports::PowerSources {
 public:
  std::span<const ports::PowerSupply> readSupplies() override { return supplies; }

  std::vector<ports::PowerSupply> supplies;
};

}  // namespace vorli::fakes
