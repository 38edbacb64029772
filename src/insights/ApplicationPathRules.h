#pragma once

#include <span>
#include <string_view>

namespace vorli {

/// How a system's file tree tells applications from the rest. Prefixes are beginnings of absolute paths; what
/// follows one, up to the next slash, belongs to one application or maker.
struct ApplicationPathRules {
  /// Bundles: a folder whose name ends in ".app". Folders: any folder, told apart by the programs in it.
  enum class Kind { bundles, folders };
  Kind kind;

  /// What stands for the Applications folders, the user's own below the home folder.
  std::span<const std::string_view> applications;
  std::span<const std::string_view> applicationsInHome;
  /// The system's own applications: they give a name, but leave nothing behind.
  std::span<const std::string_view> systemApplications;

  /// Programs that run without their application by design.
  std::span<const std::string_view> excludedPrefixes;
  std::span<const std::string_view> excludedWords;

  /// Short names of the processes, besides the first one, that take over those whose parent has ended.
  std::span<const std::string_view> adopters;

  static const ApplicationPathRules macOS;
  static const ApplicationPathRules linuxDesktop;
  static const ApplicationPathRules& ofThisSystem();
};

}  // namespace vorli
