#pragma once

#include <span>
#include <string_view>

namespace vorli {

/// Rules for finding applications in a system's file tree. Prefixes are beginnings of absolute paths; the
/// component after a prefix belongs to one application or maker.
struct ApplicationPathRules {
  /// Bundles: a folder whose name ends in ".app". Folders: any folder, identified by the programs in it.
  enum class Kind { bundles, folders };
  Kind kind;

  /// The Applications folders or their equivalents; the user's own are relative to the home folder.
  std::span<const std::string_view> applications;
  std::span<const std::string_view> applicationsInHome;
  /// The system's own applications: they provide a name, but their processes are never treated as left
  /// behind.
  std::span<const std::string_view> systemApplications;

  /// Programs that run without their application by design.
  std::span<const std::string_view> excludedPrefixes;
  std::span<const std::string_view> excludedWords;

  /// Short names of the processes, besides process 1, that adopt orphaned processes.
  std::span<const std::string_view> adopters;

  static const ApplicationPathRules macOS;
  static const ApplicationPathRules linuxDesktop;
};

}  // namespace vorli
