#pragma once

#include "ports/CrashCapture.h"
#include "posix/RecentLines.h"
#include "posix/TextBuffer.h"

#include <array>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string_view>

namespace vorli::posix {

/// Files written during a crash. Prepared at launch; afterwards nothing here allocates or locks. Failures are
/// ignored, as they cannot be reported.
class CrashFiles {
 public:
  /// Copies the paths, and reserves some descriptors for when the program has run out of them. False when a
  /// path is longer than the system allows.
  bool prepare(const ports::CrashCapturePlan& plan);

  /// Appends one line made of the pieces to the log, and moves the log if it has grown too large.
  void appendToLog(std::initializer_list<std::string_view> pieces);

  struct Report {
    std::string_view timestamp;
    std::string_view beforeCount;  // everything before the number of lines
    std::string_view afterCount;
  };

  /// Writes the report, which is named after its timestamp and contains the end of the log. The file appears
  /// only when it is complete; a full disk leaves none.
  void writeReport(const Report& report);

 private:
  using Path = FixedText<PATH_MAX>;

  int openFile(const char* path, int flags);
  void rotate(int log);
  /// False when the disk is full.
  bool writeLines(int report, const Report& pieces, int log);

  Path logFile_, previousLogFile_, pendingFolder_;
  FixedText<16> suffix_;
  std::uint64_t maxLogBytes_ = 0;
  std::size_t recentLines_ = 0;
  std::array<int, 4> reserve_{-1, -1, -1, -1};
};

}  // namespace vorli::posix
