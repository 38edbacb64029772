#include "diagnostics/CrashReportView.h"

#include <array>
#include <cstddef>
#include <utility>

namespace vorli {

namespace {

constexpr CrashReportView::Disclosure collapsed{"View report", "chevron.right", "View crash report",
                                                "Expands the full crash report text"};
constexpr CrashReportView::Disclosure expanded{"Hide report", "chevron.down", "Hide crash report",
                                               "Collapses the report detail"};

}  // namespace

CrashReportView::CrashReportView(CrashReporter& reporter, const ports::CalendarClock& calendar,
                                 CrashReporter::PendingReport report, Action onSend, Action onDismiss)
    : reporter_(reporter),
      calendar_(calendar),
      report_(std::move(report)),
      onSend_(std::move(onSend)),
      onDismiss_(std::move(onDismiss)) {}

void CrashReportView::send() {
  act(onSend_);
}

void CrashReportView::dismiss() {
  act(onDismiss_);
}

// The action is copied because it may destroy the view that owns it.
void CrashReportView::act(const Action& action) {
  if (suppressFutureCrashes) reporter_.suppress(report_.signature);
  const Action last = action;
  last();
}

std::string CrashReportView::body() const {
  return "Vorli ran into an error and quit unexpectedly on " + date() +
         ". You can send the details to Kelvaran so he can fix it, or dismiss this and carry on.";
}

std::string CrashReportView::date() const {
  return mediumDateShortTime(calendar_.localTime(report_.timestamp));
}

const CrashReportView::Disclosure& CrashReportView::disclosure() const {
  return showFullReport ? expanded : collapsed;
}

std::string CrashReportView::disclosureAccessibilityValue() const {
  return report_.summary + ". Currently " + (showFullReport ? "expanded" : "collapsed");
}

std::string mediumDateShortTime(const ports::LocalTime& time) {
  constexpr std::array months{"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                              "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
  const int hour = time.hour % 12 == 0 ? 12 : time.hour % 12;
  const std::string minute = (time.minute < 10 ? "0" : "") + std::to_string(time.minute);
  return std::string(months.at(static_cast<std::size_t>(time.month - 1))) + " " + std::to_string(time.day) +
         ", " + std::to_string(time.year) + " at " + std::to_string(hour) + ":" + minute +
         (time.hour < 12 ? " AM" : " PM");
}

}  // namespace vorli
