#pragma once

#include "ports/SystemStartupLists.h"

#include <QString>
#include <string>
#include <utility>

namespace vorli::linuxhost {

/// The crontab, read with its command-line tool, and the permissions that the desktop portal keeps for
/// sandboxed applications.
class SystemStartupLists final : public ports::SystemStartupLists {
 public:
  /// `busAddress` is the address of the session bus; empty for the usual one.
  explicit SystemStartupLists(std::string busAddress = "") : busAddress_(std::move(busAddress)) {}

  std::optional<std::string> crontab() override;
  std::vector<ports::BackgroundPermission> backgroundPermissions() override;
  std::optional<std::vector<ports::BackgroundContainer>> backgroundContainers(const std::string&) override {
    return std::nullopt;
  }

 private:
  const std::string busAddress_;
};

}  // namespace vorli::linuxhost
