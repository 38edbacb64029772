#pragma once

#include "macos/startup/BackgroundStore.h"
#include "ports/SystemStartupLists.h"

namespace vorli::machost {

/// Has only the store of background items.
class SystemStartupLists final : public ports::SystemStartupLists {
 public:
  std::optional<std::string> crontab() override { return std::nullopt; }
  std::vector<ports::BackgroundPermission> backgroundPermissions() override { return {}; }
  std::optional<std::vector<ports::BackgroundContainer>> backgroundContainers(
      const std::string& store) override {
    return readBackgroundStore(store);
  }
};

}  // namespace vorli::machost
