#pragma once

#include "daemon/ProcessControl.h"

namespace vorli::linuxhost {

/// Pins processes by pidfd.
class ProcessPins final : public daemon::ProcessControl {
 public:
  [[nodiscard]] std::expected<std::unique_ptr<daemon::PinnedProcess>, daemon::SystemError> pin(
      std::int32_t pid) override;
};

}  // namespace vorli::linuxhost
