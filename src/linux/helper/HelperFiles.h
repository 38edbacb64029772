#pragma once

#include <optional>
#include <string>

namespace vorli::linuxhost {

/// Files for the daemon that were delivered with the application: beside the executable in a build tree, in
/// libexec below an unpackaged prefix. Checks the disk each time. Thread-safe.
class HelperFiles {
 public:
  /// `programFolder` is the folder of the application's executable, `installedDaemon` the path where the
  /// script installs the daemon.
  explicit HelperFiles(std::string programFolder,
                       std::string installedDaemon = "/usr/local/libexec/vorli/vorli-helper");

  bool hasDaemon() const;
  /// Path of the script that registers the daemon; empty when there is no executable one.
  std::optional<std::string> installer() const;
  /// True when the script has installed a daemon whose build differs from the one delivered with the
  /// application. A packaged daemon has another path and belongs to the package manager. Reads both files
  /// when their sizes are equal.
  bool bringsOtherThanInstalled() const;

 private:
  std::optional<std::string> find(const char* name) const;

  std::string programFolder_;
  std::string installedDaemon_;
};

}  // namespace vorli::linuxhost
