#pragma once

#include "daemon/ProcessControl.h"

namespace vorli::machost {

/// Holds a process by its number and the moment of its start: no other process has both. The system has no
/// handle of a process to send a signal through, so the moment is read again right before the signal.
class ProcessPins final : public daemon::ProcessControl {
 public:
  [[nodiscard]] std::expected<std::unique_ptr<daemon::PinnedProcess>, daemon::SystemError> pin(
      std::int32_t pid) override;
};

}  // namespace vorli::machost
