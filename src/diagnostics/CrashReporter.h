#pragma once

#include "base/Date.h"
#include "ports/ApplicationBundle.h"
#include "ports/CalendarClock.h"
#include "ports/Files.h"
#include "ports/KeyValueStore.h"
#include "ports/LinkOpener.h"
#include "ports/Pasteboard.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vorli {

struct CrashReporterNeeds {
  ports::Files& files;
  ports::KeyValueStore& defaults;
  const ports::CalendarClock& calendar;
  const ports::ApplicationBundle& bundle;
  ports::LinkOpener& links;
  ports::Pasteboard& pasteboard;
};

/// Lists the reports of earlier crashes, sends them with the user's mail program, and moves them out of the
/// pending folder. Main thread.
class CrashReporter {
 public:
  struct PendingReport {
    std::string url;  // path of the file in the pending folder
    Date timestamp;
    std::string summary;
    std::string body;
    std::string signature;

    bool operator==(const PendingReport&) const = default;
  };

  /// Folder to which a report is moved once it was handled.
  enum class Folder { sent, dismissed };

  /// Longest link, in bytes, that every mail program accepts.
  static constexpr std::size_t longestLink = 2000;
  static constexpr auto suppressedSignaturesKey = "vorli.crash.suppressedSignatures";

  /// `folder` contains "pending"; `supportEmail` is the address to which reports are sent.
  CrashReporter(const CrashReporterNeeds& needs, std::string folder, std::string supportEmail);

  /// Returns the reports to show, the oldest first. Files that cannot be read as a report are ignored and
  /// kept.
  std::vector<PendingReport> pendingReports();

  /// Opens a mail to the support address with the report in it, and moves the report to the sent ones. True
  /// when the whole report is in the mail; false when it is on the clipboard instead, for the user to paste.
  bool send(const PendingReport& report);

  /// Moves the report's file, and replaces a file of the same name. On failure the report stays pending.
  void archive(const PendingReport& report, Folder folder);

  /// Hides all reports with this signature from now on.
  void suppress(const std::string& signature);

 private:
  std::optional<PendingReport> readReport(const ports::FolderEntry& entry);
  std::string pendingFolder() const { return folder_ + "/pending"; }
  std::optional<std::string> encodedSubject() const;
  std::optional<std::string> fullLink(const PendingReport& report) const;

  ports::Files& files_;
  ports::KeyValueStore& defaults_;
  const ports::CalendarClock& calendar_;
  const ports::ApplicationBundle& bundle_;
  ports::LinkOpener& links_;
  ports::Pasteboard& pasteboard_;
  const std::string folder_;
  const std::string supportEmail_;
};

}  // namespace vorli
