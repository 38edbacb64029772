#pragma once

#include "diagnostics/RollingLog.h"
#include "ports/ApplicationBundle.h"
#include "ports/CalendarClock.h"
#include "ports/CrashCapture.h"
#include "ports/FileViewer.h"
#include "ports/Files.h"
#include "ports/SerialQueue.h"
#include "ports/SystemDescription.h"

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace vorli {

/// Folders of the log and of the crash reports, as absolute paths.
struct DiagnosticsFolders {
  std::string logs;
  std::string crashReports;

  std::string pendingReports() const { return crashReports + "/pending"; }
};

struct DiagnosticsNeeds {
  ports::Files& files;
  ports::SerialQueue& queue;
  const ports::CalendarClock& calendar;
  const ports::ApplicationBundle& bundle;
  ports::SystemDescription& system;
  ports::CrashCapture& crashes;
  ports::FileViewer& viewer;
};

/// The program's own small log, which a user can hand over, and the capture of crashes.
class Diagnostics {
 public:
  /// Number of log lines at the end of a crash report.
  static constexpr std::size_t reportedLines = 100;

  /// Terminates the program when `folders` has an empty path.
  Diagnostics(const DiagnosticsNeeds& needs, DiagnosticsFolders folders);

  /// Call once, before anything else can fail. Main thread.
  void install();

  /// Queues a line; `level` is "INFO", "WARN" or "FATAL". Returns at once. Any thread.
  void log(std::string_view level, std::string_view message);

  /// Like `RollingLog::recentLines`. Blocks for the disk; any thread.
  std::vector<std::string> recentLogLines(std::size_t count) const;

  /// Shows the log, selected in the file manager; creates an empty log if there is none. Main thread.
  void revealLogInFinder();

 private:
  ports::CrashCapturePlan capturePlan() const;

  ports::Files& files_;
  ports::SerialQueue& queue_;
  const ports::ApplicationBundle& bundle_;
  ports::SystemDescription& system_;
  ports::CrashCapture& crashes_;
  ports::FileViewer& viewer_;
  const DiagnosticsFolders folders_;
  const std::shared_ptr<RollingLog> log_;  // queued lines hold it weakly
};

}  // namespace vorli
