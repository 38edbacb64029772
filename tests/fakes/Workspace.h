#pragma once

#include "ports/Workspace.h"

#include <utility>

namespace vorli::fakes {

/// A desktop whose running applications a test lists.
class Workspace final : public ports::Workspace {
 public:
  std::vector<ports::RunningApplication> runningApplications() override {
    ++listings;
    return applications;
  }

  ports::RunningApplication& add(std::int32_t pid, std::optional<SharedText> name,
                                 std::optional<SharedText> bundleIdentifier = std::nullopt) {
    applications.push_back({.processIdentifier = pid,
                            .localizedName = std::move(name),
                            .bundleIdentifier = std::move(bundleIdentifier),
                            .activationPolicy = ports::ActivationPolicy::regular,
                            .icon = {}});
    return applications.back();
  }

  std::vector<ports::RunningApplication> applications;
  int listings = 0;
};

}  // namespace vorli::fakes
