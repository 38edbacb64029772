#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vorli::linuxhost {

/// The application id that a flatpak sandbox carries in its `/.flatpak-info`; empty when there is none.
std::string flatpakIDFromInfo(std::string_view info);

/// What the last piece of a process's control group says of the application it was started as.
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

/// The desktop file that GIO says it launched this very process from; empty when there is none, or when the
/// variables were inherited from a parent.
std::string launchedDesktopFile(std::string_view environment, int pid);

/// The words of a `/proc/PID/cmdline`.
std::vector<std::string> commandLineWords(std::string_view commandLine);

}  // namespace vorli::linuxhost
