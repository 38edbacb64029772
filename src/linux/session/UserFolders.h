#pragma once

#include <string>

namespace vorli::linuxhost {

// Folders of this user, as absolute paths. A variable with a relative path is ignored.

/// Folder in which programs keep their settings.
std::string configFolder(const std::string& homeDirectory);
/// Folder in which programs keep their data.
std::string dataFolder(const std::string& homeDirectory);

/// `Vorli/Logs` where programs keep their state.
std::string logFolder(const std::string& homeDirectory);

/// `Vorli/CrashReports` where programs keep their data.
std::string crashReportFolder(const std::string& homeDirectory);

}  // namespace vorli::linuxhost
