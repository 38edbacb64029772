#pragma once

#include "ports/SystemStartupLists.h"

namespace vorli::fakes {

/// The lists that a test sets.
class SystemStartupLists final : public ports::SystemStartupLists {
 public:
  std::optional<std::string> crontab() override { return table; }
  std::vector<ports::BackgroundPermission> backgroundPermissions() override { return permissions; }

  std::optional<std::vector<ports::BackgroundContainer>> backgroundContainers(
      const std::string& store) override {
    readStores.push_back(store);
    return containers;
  }

  std::optional<std::string> table;
  std::vector<ports::BackgroundPermission> permissions;
  std::optional<std::vector<ports::BackgroundContainer>> containers;
  std::vector<std::string> readStores;
};

}  // namespace vorli::fakes
