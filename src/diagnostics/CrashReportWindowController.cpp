#include "diagnostics/CrashReportWindowController.h"

#include <utility>
#include <vector>

namespace vorli {

CrashReportWindowController::CrashReportWindowController(const CrashReportWindowNeeds& needs)
    : scheduler_(needs.scheduler),
      calendar_(needs.calendar),
      reporter_(needs.reporter),
      window_(needs.window),
      host_(needs.host),
      installContent_(needs.installContent) {
  window_.setCloseHandler([this] { windowWillClose(); });
}

CrashReportWindowController::~CrashReportWindowController() {
  scheduler_.cancel(nextReport_);
  window_.setCloseHandler(nullptr);
}

void CrashReportWindowController::showIfNeeded() {
  auto reports = reporter_.pendingReports();
  // A report that could not be moved is offered again at the next launch, not at once.
  std::erase_if(reports, [this](const auto& report) { return handled_.contains(report.url); });
  if (reports.empty()) return;
  if (view_) {
    window_.centerAndBringToFront();
  } else {
    show(reports.front());
  }
  host_.activateIgnoringOtherApps();
}

void CrashReportWindowController::show(const CrashReporter::PendingReport& report) {
  currentReport_ = report;
  view_ = std::make_unique<CrashReportView>(
      reporter_, calendar_, report, [this] { sendCurrent(); }, [this] { dismissCurrent(); });
  installContent_(*view_);
  window_.open("Vorli");
}

void CrashReportWindowController::sendCurrent() {
  if (!currentReport_) return;
  reporter_.send(*currentReport_);
  closeAndGoOn();
}

void CrashReportWindowController::dismissCurrent() {
  if (!currentReport_) return;
  reporter_.archive(*currentReport_, CrashReporter::Folder::dismissed);
  closeAndGoOn();
}

void CrashReportWindowController::closeAndGoOn() {
  handled_.insert(currentReport_->url);
  window_.close();
  scheduler_.cancel(nextReport_);
  nextReport_ = scheduler_.after(nextReportDelay, [this] { showIfNeeded(); });
}

// The view is destroyed later, because a press of one of its own buttons may have closed the window.
void CrashReportWindowController::windowWillClose() {
  currentReport_.reset();
  scheduler_.post([closed = std::move(view_)] {});
}

}  // namespace vorli
