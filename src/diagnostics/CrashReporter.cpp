#include "diagnostics/CrashReporter.h"

#include "base/FilePath.h"
#include "base/Logger.h"
#include "base/PercentEncoding.h"
#include "base/UTF8.h"
#include "diagnostics/CrashReportText.h"
#include "settings/UserDefaults.h"
#include "settings/VersionText.h"

#include <algorithm>
#include <set>
#include <utility>

namespace vorli {

namespace {

constexpr Logger crashReportLog{logSubsystem, "crash-reporter"};

// A report is a few kilobytes of frames and a hundred lines of log; a larger file is not ours.
constexpr std::size_t largestReport = 8'000'000;

// Punctuation that is not percent-encoded in the query of a link.
constexpr std::string_view queryPunctuation = "!$&'()*+,-./:;=?@_~";

constexpr std::string_view reportExtension = ".txt";

std::string_view nameOf(CrashReporter::Folder folder) {
  return folder == CrashReporter::Folder::sent ? "sent" : "dismissed";
}

std::optional<std::string> queryEncoded(std::string_view text) {
  if (!isUTF8(text)) return std::nullopt;
  return percentEncoded(text, queryPunctuation);
}

std::string summaryOf(std::string_view body) {
  auto summary = sectionValue(body, "Summary");
  if (!summary) summary = sectionValue(body, "Crash kind");
  return std::string(summary.value_or("Vorli ran into an error and quit unexpectedly."));
}

}  // namespace

CrashReporter::CrashReporter(const CrashReporterNeeds& needs, std::string folder, std::string supportEmail)
    : files_(needs.files),
      defaults_(needs.defaults),
      calendar_(needs.calendar),
      bundle_(needs.bundle),
      links_(needs.links),
      pasteboard_(needs.pasteboard),
      folder_(std::move(folder)),
      supportEmail_(std::move(supportEmail)) {}

std::vector<CrashReporter::PendingReport> CrashReporter::pendingReports() {
  std::vector<PendingReport> reports;
  for (const auto& entry : files_.list(pendingFolder()).value_or(std::vector<ports::FolderEntry>())) {
    if (auto report = readReport(entry)) reports.push_back(std::move(*report));
  }
  std::ranges::stable_sort(reports, {}, &PendingReport::timestamp);
  const auto suppressed = stringArrayForKey(defaults_, suppressedSignaturesKey);
  std::erase_if(reports, [&](const PendingReport& report) {
    return std::ranges::find(suppressed, report.signature) != suppressed.end();
  });
  return reports;
}

std::optional<CrashReporter::PendingReport> CrashReporter::readReport(const ports::FolderEntry& entry) {
  if (!entry.name.ends_with(reportExtension)) return std::nullopt;
  PendingReport report;
  report.url = pendingFolder() + "/" + entry.name;
  auto body = files_.read(report.url, largestReport);
  if (!body || !isUTF8(*body)) return std::nullopt;
  report.timestamp = dateFromFileName(entry.name).value_or(entry.modified.value_or(calendar_.now()));
  report.summary = summaryOf(*body);
  report.signature = crashSignature(*body);
  report.body = std::move(*body);
  return report;
}

std::optional<std::string> CrashReporter::encodedSubject() const {
  return queryEncoded("Vorli crash report, " + versionText(bundle_));
}

std::optional<std::string> CrashReporter::fullLink(const PendingReport& report) const {
  const auto subject = encodedSubject();
  const auto body = queryEncoded(report.body);
  if (!subject || !body) return std::nullopt;
  auto link = "mailto:" + supportEmail_ + "?subject=" + *subject + "&body=" + *body;
  if (link.size() > longestLink) return std::nullopt;
  return link;
}

bool CrashReporter::send(const PendingReport& report) {
  const auto link = fullLink(report);
  const bool isInMail = link && links_.openURL(*link);
  if (!isInMail) {
    pasteboard_.setString(report.body);
    links_.openURL("mailto:" + supportEmail_ + "?subject=" + encodedSubject().value_or("Vorli%20crash"));
  }
  archive(report, Folder::sent);
  return isInMail;
}

void CrashReporter::archive(const PendingReport& report, Folder folder) {
  const auto name = fileName(report.url);
  const std::string target = folder_ + "/" + std::string(nameOf(folder));
  files_.createFolder(target);
  if (const auto moved = files_.move(report.url, target + "/" + name); !moved) {
    crashReportLog.error("Failed to move crash report %{public}s into %{public}s: %{public}s", name,
                         nameOf(folder), moved.error());
  }
}

void CrashReporter::suppress(const std::string& signature) {
  const auto stored = stringArrayForKey(defaults_, suppressedSignaturesKey);
  std::set<std::string> signatures(stored.begin(), stored.end());
  signatures.insert(signature);
  defaults_.setObject(suppressedSignaturesKey,
                      std::vector<std::string>(signatures.begin(), signatures.end()));
  crashReportLog.log("Suppressed crash signature %{public}s", signature);
}

}  // namespace vorli
