#pragma once

#include "linux/DesktopEntryIndex.h"
#include "linux/WindowList.h"

#include <cstdint>
#include <span>
#include <string>

namespace vorli::linuxhost {

/// Says which desktop entry a process was started from, by the first evidence that answers: flatpak, snap,
/// the systemd unit, GIO's launch record, what its windows claim, its executable. Reads /proc at each call;
/// the caller keeps the answer for the process's life. Main thread.
class ApplicationMatcher {
 public:
  /// `root` stands before every path that is read; tests give a recorded tree.
  explicit ApplicationMatcher(const DesktopEntryIndex& entries, std::string root = "");

  /// Null when nothing tells, or the process is gone or may not be read. `windows` are the process's own.
  const DesktopEntry* match(std::int32_t pid, std::span<const DesktopWindow> windows) const;

 private:
  const DesktopEntry* byFlatpak(const std::string& process) const;
  const DesktopEntry* byControlGroup(std::int32_t pid, const std::string& process) const;
  const DesktopEntry* byLaunchRecord(std::int32_t pid, const std::string& process) const;
  const DesktopEntry* byWindow(const DesktopWindow& window) const;
  const DesktopEntry* byExecutable(std::int32_t pid, const std::string& process) const;
  bool leadsItsControlGroup(std::int32_t pid, const std::string& cgroup) const;

  const DesktopEntryIndex& entries_;
  const std::string root_;
};

/// The file of the program that a process runs, without links; where an upgrade replaced it, the name that it
/// had. Empty when the process is gone or may not be read. `root` stands before the path.
std::string programFileOf(std::int32_t pid, const std::string& root = "");

}  // namespace vorli::linuxhost
