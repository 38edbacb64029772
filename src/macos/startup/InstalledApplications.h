#pragma once

#include "ports/InstalledApplications.h"

namespace vorli::machost {

/// The system's database of applications, and the bundles on the disk.
class InstalledApplications final : public ports::InstalledApplications {
 public:
  /// Does nothing: the system's answers are always current.
  void lookAgain() override;
  std::optional<std::string> urlForApplication(std::string_view bundleIdentifier) override;
  std::optional<std::string> urlForProgram(const std::string& path) override;
  std::optional<ports::BundleInfo> bundle(const std::string& path) override;
};

}  // namespace vorli::machost
