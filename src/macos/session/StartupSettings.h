#pragma once

#include "ports/StartupSettings.h"

namespace vorli::machost {

/// The page of System Settings with all login items.
class StartupSettings final : public ports::StartupSettings {
 public:
  void open() override;
};

}  // namespace vorli::machost
