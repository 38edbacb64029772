#pragma once

#include "ports/SystemDescription.h"

namespace vorli::fakes {

/// A machine as a test describes it.
class SystemDescription final : public ports::SystemDescription {
 public:
  ports::SystemVersion systemVersion() override { return version; }
  std::optional<std::string> hardwareModel() override { return model; }

  ports::SystemVersion version{.name = "Exemplar 12", .release = "6.1.0"};
  std::optional<std::string> model = "Laptop 5";
};

}  // namespace vorli::fakes
