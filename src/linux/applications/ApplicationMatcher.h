#pragma once

#include "linux/applications/DesktopEntryIndex.h"
#include "linux/applications/WindowList.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace vorli::linuxhost {

/// Finds the desktop entry that a process was started from, by the first evidence that leads to one: flatpak,
/// snap, the systemd unit, GIO's launch record, its name on the session bus, the claims of its windows, its
/// executable, the script that started it. Reads /proc at each call. Main thread.
class ApplicationMatcher {
 public:
  /// `root` is the prefix of every path that is read; tests pass a recorded tree.
  explicit ApplicationMatcher(const DesktopEntryIndex& entries, std::string root = "");

  /// Null when there is no evidence, or the process is gone or may not be read. Null also for the bus proxy
  /// of a sandbox, which has the marks of the sandbox but is not its application. `windows` are the process's
  /// own; `busID` is the identifier that it claims on the session bus, if it does.
  const formats::DesktopEntry* match(std::int32_t pid, std::span<const DesktopWindow> windows,
                                     std::string_view busID = {}) const;

  /// Returns the entry for the identifiers that a window has set itself; null when there is none.
  const formats::DesktopEntry* byWindow(const DesktopWindow& window) const;

  /// Returns the id of the flatpak that the process runs in; empty when it runs in none.
  std::string sandboxOf(std::int32_t pid) const;

 private:
  const formats::DesktopEntry* byControlGroup(std::int32_t pid, const std::string& process) const;
  const formats::DesktopEntry* byLaunchRecord(std::int32_t pid, const std::string& process) const;
  const formats::DesktopEntry* byWindows(std::int32_t pid, std::span<const DesktopWindow> windows) const;
  const formats::DesktopEntry* byExecutable(std::int32_t pid) const;
  const formats::DesktopEntry* byParentScript(std::int32_t pid) const;
  const formats::DesktopEntry* byScriptBeside(const std::string& program) const;
  std::string startedProgramOf(std::int32_t pid) const;
  bool leadsItsControlGroup(std::int32_t pid, const std::string& cgroup) const;

  const DesktopEntryIndex& entries_;
  const std::string root_;
};

}  // namespace vorli::linuxhost
