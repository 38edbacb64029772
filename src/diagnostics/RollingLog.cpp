#include "diagnostics/RollingLog.h"

#include "base/ISOTimestamp.h"
#include "base/Logger.h"
#include "base/UTF8.h"

#include <algorithm>
#include <utility>

namespace vorli {

namespace {

constexpr Logger diagnosticsLog{logSubsystem, "diagnostics"};

// A larger log is not ours: ours is moved when it exceeds its limit.
constexpr std::size_t largestReadableLog = 16 * RollingLog::maxBytes;

}  // namespace

RollingLog::RollingLog(ports::Files& files, const ports::CalendarClock& calendar, std::string folder)
    : files_(files), calendar_(calendar), folder_(std::move(folder)) {}

void RollingLog::write(std::string_view level, std::string_view message) {
  files_.createFolder(folder_);
  if (!isUTF8(level) || !isUTF8(message)) return;
  std::string line(ISOTimestamp(calendar_.now()).text());
  line.append(" [").append(level).append("] ").append(message).append("\n");
  files_.append(currentFile(), line);
  rotate();
  diagnosticsLog.log("%{public}s: %{public}s", level, message);
}

void RollingLog::rotate() {
  const auto size = files_.size(currentFile());
  if (!size || *size <= maxBytes) return;
  // A failed move is tried again after the next line.
  if (!files_.move(currentFile(), previousFile()) && *size > 2 * maxBytes) keepNewestLines();
}

// Keeps as much as an undisturbed log has after a move: a folder may permanently occupy the previous log's
// name.
void RollingLog::keepNewestLines() {
  const auto text = files_.read(currentFile(), largestReadableLog);
  if (!files_.clear(currentFile()) || !text) return;
  // One byte more, because a line that is kept whole follows a line feed.
  const auto newest = text->substr(text->size() - std::min<std::size_t>(text->size(), maxBytes + 1));
  const auto lineFeed = newest.find('\n');
  if (lineFeed != std::string::npos) files_.append(currentFile(), newest.substr(lineFeed + 1));
}

std::vector<std::string> RollingLog::recentLines(std::size_t count) const {
  const auto text = files_.read(currentFile(), largestReadableLog);
  if (!text || !isUTF8(*text) || count == 0) return {};
  std::vector<std::string> lines;  // the last one first
  std::string_view rest = *text;
  while (true) {
    const auto lineFeed = rest.rfind('\n');
    const bool isFirst = lineFeed == std::string_view::npos;
    lines.emplace_back(isFirst ? rest : rest.substr(lineFeed + 1));
    if (isFirst || lines.size() == count) break;
    rest = rest.substr(0, lineFeed);
  }
  std::ranges::reverse(lines);
  return lines;
}

}  // namespace vorli
