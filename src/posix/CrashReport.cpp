#include "posix/CrashReport.h"

#include "base/ISOTimestamp.h"
#include "posix/CalendarClock.h"

#include <algorithm>

namespace vorli::posix {

namespace {

bool keep(std::string_view given, TextBuffer& text) {
  text.clear();
  text.add(given);
  return text.text().size() == given.size();
}

}  // namespace

bool CrashReport::prepare(const ports::CrashCapturePlan& plan, const CrashHost& host) {
  host_ = host;
  const auto& pieces = plan.pieces;
  return files_.prepare(plan) && keep(pieces.timestamp, beforeTimestamp_) && keep(pieces.kind, header_) &&
         keep(pieces.summary, beforeSummary_) && keep(pieces.stackTrace, beforeStack_) &&
         keep(pieces.lineCount, beforeCount_) && keep(pieces.lines, afterCount_);
}

void CrashReport::begin(std::string_view kind) {
  kind_.clear();
  kind_.add(kind);
  summary_.clear();
  frames_.clear();
  stack_.clear();
}

void CrashReport::describeStack() {
  frames_.clear();
  host_.describe(stack_.frames(), frames_);
}

void CrashReport::writeLogLine() {
  const ISOTimestamp timestamp(CalendarClock().now());
  files_.appendToLog({timestamp.text(), " [FATAL] ", summary_.text(), "\n", frames_.text(), "\n"});
}

void CrashReport::writeSystemLog() {
  text_.clear();
  text_.add("FATAL: ").add(summary_.text()).add("\n").add(frames_.text());
  host_.writeSystemLog(text_.text());
}

// The signal that follows an exception may come within the same millisecond, and its report needs a file name
// of its own.
Date CrashReport::nextMoment() {
  constexpr double millisecond = 0.001;
  return lastMoment_ = std::max(CalendarClock().now(), lastMoment_ + millisecond);
}

void CrashReport::writeFile() {
  const ISOTimestamp timestamp(nextMoment());
  text_.clear();
  text_.add(beforeTimestamp_.text()).add(timestamp.text()).add(header_.text()).add(kind_.text());
  text_.add(beforeSummary_.text()).add(summary_.text());
  text_.add(beforeStack_.text()).add(frames_.text()).add(beforeCount_.text());
  files_.writeReport({timestamp.text(), text_.text(), afterCount_.text()});
}

}  // namespace vorli::posix
