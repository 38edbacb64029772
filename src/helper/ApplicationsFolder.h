#pragma once

#include "ports/ApplicationBundle.h"

#include <span>
#include <string_view>

namespace vorli {

/// Where a system keeps installed applications, as prefixes of a path with a slash at both ends.
struct ApplicationsFolders {
  std::span<const std::string_view> everybodys;
  /// Below the user's home folder.
  std::span<const std::string_view> inHome;

  static const ApplicationsFolders macOS;
  static const ApplicationsFolders linuxDesktop;
  static const ApplicationsFolders& ofThisSystem();
};

/// True when the program lies in one of the folders, at any depth. A plain test of the path's beginning: no
/// link is followed.
bool isAppInApplicationsFolder(const ports::ApplicationBundle& bundle,
                               const ApplicationsFolders& folders = ApplicationsFolders::ofThisSystem());

}  // namespace vorli
