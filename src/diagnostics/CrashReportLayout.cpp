#include "diagnostics/CrashReportLayout.h"

#include <string_view>

namespace vorli {

namespace {

constexpr std::string_view systemHeading(HostSystem system) {
  return system == HostSystem::macOS ? "\nmacOS:       " : "\nSystem:      ";
}

std::string nameAndRelease(const ports::SystemVersion& version) {
  if (version.name.empty() || version.release.empty()) return version.name + version.release;
  return version.name + ", " + version.release;
}

// A value of several lines would break the lines of the header.
std::string onOneLine(std::string text) {
  for (char& c : text) {
    if (c == '\n' || c == '\r') c = ' ';
  }
  return text;
}

}  // namespace

ports::CrashReportPieces crashReportPieces(const std::string& versionText,
                                           const ports::SystemVersion& systemVersion,
                                           const std::optional<std::string>& hardwareModel,
                                           HostSystem system) {
  std::string kind = "\nApp version: " + versionText;
  kind.append(systemHeading(system)).append(onOneLine(nameAndRelease(systemVersion)));
  kind.append("\nHardware:    ").append(onOneLine(hardwareModel.value_or("unknown")));
  kind.append("\nCrash kind:  ");
  return {
      .timestamp = "Vorli crash report\n==================\nTimestamp:   ",
      .kind = std::move(kind),
      .summary = "\n\nSummary\n-------\n",
      .stackTrace = "\n\nStack trace\n-----------\n",
      .lineCount = "\n\nRecent activity (last ",
      .lines = " log lines)\n-------------------------------------------------\n",
  };
}

}  // namespace vorli
