#include "diagnostics/Diagnostics.h"

#include "base/Assert.h"
#include "diagnostics/CrashReportLayout.h"
#include "settings/VersionText.h"

#include <utility>

namespace vorli {

Diagnostics::Diagnostics(const DiagnosticsNeeds& needs, DiagnosticsFolders folders)
    : files_(needs.files),
      queue_(needs.queue),
      bundle_(needs.bundle),
      system_(needs.system),
      crashes_(needs.crashes),
      viewer_(needs.viewer),
      folders_(std::move(folders)),
      log_(std::make_shared<RollingLog>(needs.files, needs.calendar, folders_.logs)) {
  VORLI_ASSERT(!folders_.logs.empty() && !folders_.crashReports.empty());
}

void Diagnostics::install() {
  files_.createFolder(folders_.logs);
  files_.createFolder(folders_.pendingReports());
  log("INFO", "Vorli launched, " + versionText(bundle_));
  crashes_.install(capturePlan());
}

ports::CrashCapturePlan Diagnostics::capturePlan() const {
  return {
      .logFile = log_->currentFile(),
      .previousLogFile = log_->previousFile(),
      .maxLogBytes = RollingLog::maxBytes,
      .pendingFolder = folders_.pendingReports(),
      .reportSuffix = ".txt",
      .recentLines = reportedLines,
      .pieces = crashReportPieces(versionText(bundle_), system_.systemVersion(), system_.hardwareModel()),
  };
}

void Diagnostics::log(std::string_view level, std::string_view message) {
  queue_.post([log = std::weak_ptr(log_), level = std::string(level), message = std::string(message)] {
    if (const auto alive = log.lock()) alive->write(level, message);
  });
}

std::vector<std::string> Diagnostics::recentLogLines(std::size_t count) const {
  return log_->recentLines(count);
}

void Diagnostics::revealLogInFinder() {
  files_.createFolder(folders_.logs);
  if (!files_.size(log_->currentFile())) files_.append(log_->currentFile(), "");
  viewer_.reveal(log_->currentFile());
}

}  // namespace vorli
