#pragma once

#include "base/Scheduler.h"
#include "diagnostics/CrashReportView.h"
#include "diagnostics/CrashReporter.h"
#include "ports/ApplicationHost.h"
#include "ports/CalendarClock.h"
#include "ports/SheetWindow.h"

#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>

namespace vorli {

struct CrashReportWindowNeeds {
  Scheduler& scheduler;
  const ports::CalendarClock& calendar;
  CrashReporter& reporter;
  ports::SheetWindow& window;
  ports::ApplicationHost& host;
  /// Puts a view into the window before it opens; the view is destroyed one turn of the main loop after the
  /// window has closed.
  std::function<void(CrashReportView&)> installContent;
};

/// Offers the pending crash reports, one window after the other, the oldest first. Main thread.
class CrashReportWindowController {
 public:
  /// Seconds between a report that was handled and the next one.
  static constexpr double nextReportDelay = 0.25;

  explicit CrashReportWindowController(const CrashReportWindowNeeds& needs);
  ~CrashReportWindowController();
  CrashReportWindowController(const CrashReportWindowController&) = delete;
  CrashReportWindowController& operator=(const CrashReportWindowController&) = delete;

  /// Shows the oldest report, or brings the window to the front if it is open.
  void showIfNeeded();

  /// The report on screen.
  const std::optional<CrashReporter::PendingReport>& currentReport() const { return currentReport_; }

 private:
  void show(const CrashReporter::PendingReport& report);
  void sendCurrent();
  void dismissCurrent();
  void closeAndGoOn();
  void windowWillClose();

  Scheduler& scheduler_;
  const ports::CalendarClock& calendar_;
  CrashReporter& reporter_;
  ports::SheetWindow& window_;
  ports::ApplicationHost& host_;
  const std::function<void(CrashReportView&)> installContent_;
  std::unique_ptr<CrashReportView> view_;  // present while the window is open
  std::optional<CrashReporter::PendingReport> currentReport_;
  std::set<std::string> handled_;  // files of the reports that were sent or dismissed in this run
  Scheduler::TimerId nextReport_ = 0;
};

}  // namespace vorli
