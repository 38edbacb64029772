#pragma once

#include "ports/CalendarClock.h"
#include "ports/Files.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace vorli {

/// A text file of log lines, which becomes the previous log when it grows too large; there is at most one
/// previous log. No file stays open between two lines. Lines that cannot be written are silently lost.
/// If the previous log cannot be replaced, the log keeps only its newest lines at twice its limit.
class RollingLog {
 public:
  static constexpr std::uint64_t maxBytes = 1'000'000;

  RollingLog(ports::Files& files, const ports::CalendarClock& calendar, std::string folder);

  std::string currentFile() const { return folder_ + "/diagnostics.log"; }
  std::string previousFile() const { return folder_ + "/diagnostics.1.log"; }
  const std::string& folder() const { return folder_; }

  /// Appends a line with the current time, and writes it to the system's log as well. A message that is not
  /// valid UTF-8 is ignored. One thread at a time.
  void write(std::string_view level, std::string_view message);

  /// Returns the last `count` pieces of the current log between its line feeds; a line feed at the end is
  /// followed by one more, empty piece. Empty when the log cannot be read or is not valid UTF-8. Any thread.
  std::vector<std::string> recentLines(std::size_t count) const;

 private:
  void rotate();
  void keepNewestLines();

  ports::Files& files_;
  const ports::CalendarClock& calendar_;
  const std::string folder_;
};

}  // namespace vorli
