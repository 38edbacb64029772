#pragma once

#include "base/Date.h"
#include "ports/CrashCapture.h"
#include "posix/CrashFiles.h"
#include "posix/CrashHost.h"
#include "posix/StackWalk.h"
#include "posix/TextBuffer.h"

#include <string_view>

namespace vorli::posix {

/// The report about one crash, written step by step; if a step faults, the caller may continue with the next
/// one. All memory is reserved at launch.
class CrashReport {
 public:
  /// False when a text or a path of the plan does not fit.
  bool prepare(const ports::CrashCapturePlan& plan, const CrashHost& host);

  /// Starts a new report, for an exception or for the signal that follows it.
  void begin(std::string_view kind);
  TextBuffer& summary() { return summary_; }
  StackWalk& stack() { return stack_; }

  void describeStack();
  void writeLogLine();
  void writeSystemLog();
  void writeFile();

 private:
  Date nextMoment();

  CrashHost host_{};
  CrashFiles files_;
  FixedText<4096> header_;  // pieces before the kind
  FixedText<128> beforeSummary_, beforeStack_, beforeCount_, afterCount_, beforeTimestamp_;
  FixedText<16> kind_;
  FixedText<1024> summary_;
  FixedText<16 * 1024> frames_;
  FixedText<24 * 1024> text_;
  StackWalk stack_;
  Date lastMoment_ = Date::distantPast();
};

}  // namespace vorli::posix
