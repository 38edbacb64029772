#pragma once

#include "base/HostSystem.h"
#include "insights/ApplicationPathRules.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vorli {

/// Finds the application that a program belongs to from its path, by one system's rules. Only reads the text,
/// never the disk.
class ApplicationPaths {
 public:
  /// `home` is the user's home folder, without a trailing slash.
  explicit ApplicationPaths(const std::string& home,
                            const ApplicationPathRules& rules = ofThisSystem<ApplicationPathRules>());

  const ApplicationPathRules& rules() const { return rules_; }

  /// True for a program that is never treated as left behind.
  bool isExcluded(std::string_view executablePath) const;

  /// Candidate install locations of the application around this program; the first one that contains an
  /// application counts. They are parts of `executablePath`. With bundles: the innermost bundle, if it is
  /// directly in an Applications folder. With folders: each folder below the Applications folder, innermost
  /// first.
  std::vector<std::string_view> enclosingApplications(std::string_view executablePath) const;

  /// With bundles: the name of the outermost bundle, if it is anywhere in an Applications folder, including
  /// the system's.
  std::optional<std::string_view> bundleName(std::string_view executablePath) const;

  /// With folders: the program itself, wherever it is. If it is in an Applications folder, including the
  /// system's, the folders around it follow, innermost first. The program belongs to the first application
  /// found at one of these places.
  std::vector<std::string_view> namingPlaces(std::string_view executablePath) const;

 private:
  // Length of the longest prefix that the path continues after; 0 when there is none.
  std::size_t longestPrefix(std::string_view path, bool withSystemApplications) const;

  const ApplicationPathRules& rules_;
  std::vector<std::string> inHome_;  // the rules' prefixes, with the home folder in front
};

}  // namespace vorli
