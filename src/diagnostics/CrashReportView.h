#pragma once

#include "base/Published.h"
#include "diagnostics/CrashReporter.h"
#include "ports/CalendarClock.h"

#include <functional>
#include <string>
#include <string_view>

namespace vorli {

/// Content of the crash report window: one report and the actions that the user can take. Main thread.
class CrashReportView {
 public:
  using Action = std::function<void()>;

  /// The actions may destroy the view.
  CrashReportView(CrashReporter& reporter, const ports::CalendarClock& calendar,
                  CrashReporter::PendingReport report, Action onSend, Action onDismiss);

  const CrashReporter::PendingReport& report() const { return report_; }

  /// True while the full text is shown.
  Published<bool, CrashReportView> showFullReport{false};
  /// State of the check box.
  Published<bool, CrashReportView> suppressFutureCrashes{false};

  void setSuppressFutureCrashes(bool suppress) { suppressFutureCrashes = suppress; }
  void toggleFullReport() { showFullReport = !showFullReport; }
  void send();
  void dismiss();

  static constexpr std::string_view icon = "exclamationmark.triangle.fill";
  static constexpr std::string_view title = "Vorli crashed last time";
  std::string body() const;
  /// The part of the body that must not be broken into lines.
  std::string date() const;

  /// Texts of the button that shows and hides the full text.
  struct Disclosure {
    std::string_view text;
    std::string_view symbol;
    std::string_view accessibilityLabel;
    std::string_view accessibilityHint;
  };
  const Disclosure& disclosure() const;
  std::string disclosureAccessibilityValue() const;

  static constexpr double fullTextHeight = 220.0;
  static constexpr std::string_view fullTextAccessibilityLabel = "Crash report contents";
  static constexpr std::string_view checkBox = "Don't ask me about this kind of crash again";
  static constexpr std::string_view sendButton = "Send report";
  static constexpr std::string_view sendSymbol = "paperplane.fill";
  static constexpr std::string_view sendAccessibilityLabel = "Send crash report";
  static constexpr std::string_view sendAccessibilityHint =
      "Opens your email client with the report attached";
  static constexpr std::string_view dismissButton = "Not this time";

 private:
  void act(const Action& action);

  CrashReporter& reporter_;
  const ports::CalendarClock& calendar_;
  const CrashReporter::PendingReport report_;
  const Action onSend_;
  const Action onDismiss_;
};

/// Formats a medium-length date and a short time, as in "Mar 1, 2026 at 9:30 AM".
std::string mediumDateShortTime(const ports::LocalTime& time);

}  // namespace vorli
