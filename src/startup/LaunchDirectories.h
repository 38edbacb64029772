#pragma once

#include "ports/StartupFiles.h"
#include "startup/RawCandidate.h"
#include "startup/StartupSource.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vorli {

/// One folder of launch jobs.
struct LaunchDir {
  std::string url;
  bool userWritable = false;
  StartupItem::Source source = StartupItem::Source::autoInstalled;
};

/// Values read from a launch job's property list.
struct LaunchPlist {
  std::string label;
  std::optional<std::string> programPath;
  bool runAtLoad = false;

  bool operator==(const LaunchPlist&) const = default;
};

/// The launch jobs of the user and of the system, including the paused ones.
class LaunchDirectories final : public StartupSource {
 public:
  /// `home` is the user's home folder, without a slash at its end.
  LaunchDirectories(ports::StartupFiles& files, const std::string& home);

  std::vector<RawCandidate> candidates() override { return scanLaunchDirectories(); }

  /// Returns the candidates ordered by folder, and by name within a folder.
  std::vector<RawCandidate> scanLaunchDirectories();

  /// Empty for a file that cannot be read or is not a property list with a dictionary at the top level. A job
  /// without a label is named after its file; a paused job after the file's longer name.
  std::optional<LaunchPlist> parseLaunchPlist(const std::string& url);

 private:
  std::optional<RawCandidate> candidateFromFile(const LaunchDir& folder, const std::string& name);

  ports::StartupFiles& files_;
  const std::vector<LaunchDir> folders_;
};

}  // namespace vorli
