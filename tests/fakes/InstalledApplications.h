#pragma once

#include "ports/InstalledApplications.h"

#include <map>
#include <string>
#include <vector>

namespace vorli::fakes {

/// The applications that a test installs.
class InstalledApplications final : public ports::InstalledApplications {
 public:
  void lookAgain() override { ++looks; }

  std::optional<std::string> urlForApplication(std::string_view bundleIdentifier) override {
    lookups.emplace_back(bundleIdentifier);
    const auto found = urls.find(bundleIdentifier);
    if (found == urls.end()) return std::nullopt;
    return found->second;
  }

  std::optional<std::string> urlForProgram(const std::string& path) override {
    const auto found = programs.find(path);
    if (found == programs.end()) return std::nullopt;
    return found->second;
  }

  std::optional<ports::BundleInfo> bundle(const std::string& path) override {
    const auto found = bundles.find(path);
    if (found == bundles.end()) return std::nullopt;
    return found->second;
  }

  /// Adds an application that is found by its identifier and by its path.
  void install(const std::string& path, const std::string& identifier, const std::string& name) {
    urls[identifier] = path;
    bundles[path] = {identifier, std::nullopt, name};
  }

  std::map<std::string, std::string, std::less<>> urls;
  int looks = 0;
  std::map<std::string, std::string> programs;  // application by program file
  std::map<std::string, ports::BundleInfo> bundles;
  std::vector<std::string> lookups;  // the identifiers, in order
};

}  // namespace vorli::fakes
