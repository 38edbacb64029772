#pragma once

#include "base/HostSystem.h"
#include "ports/ApplicationBundle.h"

#include <span>
#include <string_view>

namespace vorli {

/// Folders in which a system keeps installed applications, as path prefixes with a slash at both ends.
struct ApplicationsFolders {
  std::span<const std::string_view> everybodys;
  /// Folders below the user's home folder.
  std::span<const std::string_view> inHome;

  static const ApplicationsFolders macOS;
  static const ApplicationsFolders linuxDesktop;
};

/// True when the program lies in one of the folders, at any depth. Compares path prefixes only; links are not
/// followed.
bool isAppInApplicationsFolder(const ports::ApplicationBundle& bundle,
                               const ApplicationsFolders& folders = ofThisSystem<ApplicationsFolders>());

}  // namespace vorli
