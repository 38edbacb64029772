#pragma once

#include "insights/ApplicationPathRules.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vorli {

/// Reads from a program's path which application it belongs to, by one system's rules. Looks at the text
/// alone, never at the disk.
class ApplicationPaths {
 public:
  /// `home` is the user's home folder, without a slash at its end.
  explicit ApplicationPaths(const std::string& home,
                            const ApplicationPathRules& rules = ApplicationPathRules::ofThisSystem());

  const ApplicationPathRules& rules() const { return rules_; }

  /// True for a program that is not judged as left behind.
  bool isExcluded(std::string_view executablePath) const;

  /// Where the application around this program is installed; of several places the first that proves to hold
  /// one counts. They are pieces of `executablePath`. With bundles that is the innermost one, and only when
  /// it lies in an Applications folder itself; with folders each one below the Applications folder, the
  /// innermost first.
  std::vector<std::string_view> enclosingApplications(std::string_view executablePath) const;

  /// With bundles: the name of the outermost bundle, when it lies anywhere in an Applications folder, the
  /// system's included.
  std::optional<std::string_view> bundleName(std::string_view executablePath) const;

  /// With folders: the program itself wherever it lies, then each folder around it, the innermost first, when
  /// it lies in an Applications folder, the system's included. The first application that one of them proves
  /// to hold is the program's.
  std::vector<std::string_view> namingPlaces(std::string_view executablePath) const;

 private:
  // Length of the longest of the prefixes that the path goes on behind; 0 when there is none.
  std::size_t longestPrefix(std::string_view path, bool withSystemApplications) const;

  const ApplicationPathRules& rules_;
  std::vector<std::string> inHome_;  // the rules' prefixes behind the home folder
};

}  // namespace vorli
