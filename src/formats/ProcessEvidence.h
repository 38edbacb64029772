#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vorli::formats {

/// Returns the application id in the `/.flatpak-info` of a flatpak sandbox; empty when there is none.
std::string flatpakIDFromInfo(std::string_view info);

/// The application that a process was started as, according to the last part of its control group.
struct CgroupEvidence {
  enum class Kind { none, flatpak, snap, systemdUnit };
  Kind kind = Kind::none;
  /// Ids to look up, the most likely first. A systemd unit's name may begin with the launcher's.
  std::vector<std::string> ids;
  bool isAutostart = false;

  bool operator==(const CgroupEvidence&) const = default;
};

/// Reads `/proc/PID/cgroup`. Units are named by the rules that desktops share:
/// `app[-LAUNCHER]-ID-RANDOM.scope`, `app[-LAUNCHER]-ID[@RANDOM].service`, with `\x2d` for a dash inside of a
/// part.
CgroupEvidence evidenceFromCgroup(std::string_view cgroup);

/// Returns the desktop file from which GIO launched this process; empty when there is none, or when the
/// variables were inherited from a parent.
std::string launchedDesktopFile(std::string_view environment, int pid);

/// Splits a `/proc/PID/cmdline` into words.
std::vector<std::string> commandLineWords(std::string_view commandLine);

}  // namespace vorli::formats
