#pragma once

#include <optional>
#include <string>

namespace vorli::linuxhost {

/// What came with the application for a daemon that is not installed yet: beside the executable in a build
/// tree, in libexec below an unpackaged prefix. Looks at the disk each time. Any thread.
class HelperFiles {
 public:
  /// `programFolder` is where the application's executable lies.
  explicit HelperFiles(std::string programFolder);

  bool hasDaemon() const;
  /// The script that registers the daemon; empty when there is none to run.
  std::optional<std::string> installer() const;

 private:
  std::optional<std::string> find(const char* name) const;

  std::string programFolder_;
};

}  // namespace vorli::linuxhost
