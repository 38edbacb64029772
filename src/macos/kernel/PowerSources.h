#pragma once

#include "ports/PowerSources.h"

namespace vorli::machost {

/// The supply that the system names as the one in use.
class PowerSources final : public ports::PowerSources {
 public:
  std::span<const ports::PowerSupply> readSupplies() override;

 private:
  ports::PowerSupply supply_;
};

}  // namespace vorli::machost
