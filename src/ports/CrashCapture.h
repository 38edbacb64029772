#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace vorli::ports {

/// The fixed texts of a crash report; the value that each one labels follows it.
struct CrashReportPieces {
  std::string timestamp;
  std::string kind;  // includes all text before it that is known in advance
  std::string summary;
  std::string stackTrace;
  std::string lineCount;
  std::string lines;

  bool operator==(const CrashReportPieces&) const = default;
};

/// Everything that a crash report needs in advance, because nothing can be computed during a crash. Paths are
/// absolute.
struct CrashCapturePlan {
  std::string logFile;
  std::string previousLogFile;  // new name of `logFile` when it exceeds `maxLogBytes`
  std::uint64_t maxLogBytes = 0;
  std::string pendingFolder;    // where reports are written
  std::string reportSuffix;     // of a report's file name, after its timestamp
  std::size_t recentLines = 0;  // number of log lines at the end of a report
  CrashReportPieces pieces;
};

/// Writes a log line and a report when the program crashes, then lets the crash take its normal course. An
/// uncaught exception has the kind "NSException" and the summary "Uncaught exception: NAME, REASON", a fatal
/// signal the kind "Signal" and the summary "Fatal signal NAME (NUMBER)". In the timestamp of a report's file
/// name, "-" replaces ":". Main thread; does not block.
class CrashCapture {
 public:
  virtual ~CrashCapture() = default;

  /// Installs the handler of uncaught exceptions, then those of SIGABRT, SIGILL, SIGSEGV, SIGBUS, SIGFPE and
  /// SIGTRAP. Call it once.
  virtual void install(const CrashCapturePlan& plan) = 0;
};

}  // namespace vorli::ports
