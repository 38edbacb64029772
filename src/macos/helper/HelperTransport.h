#pragma once

#include "ports/HelperTransport.h"

namespace vorli::machost {

/// Connects to the daemon's Mach service. The system starts the daemon with the first request.
class HelperTransport final : public ports::HelperTransport {
 public:
  std::unique_ptr<ports::HelperConnection> connect(std::string_view serviceName) override;
};

}  // namespace vorli::machost
