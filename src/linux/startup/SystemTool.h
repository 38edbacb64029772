#pragma once

#include <QStringList>
#include <optional>
#include <string>

namespace vorli::linuxhost {

/// Result of a program that ran to its end.
struct ToolResult {
  int exitCode = 0;
  std::string output;
};

/// Runs a program of PATH in the C locale and waits for it, at most 10 seconds; then it is killed. Empty when
/// it could not be started or did not end by itself. Any thread.
std::optional<ToolResult> runTool(const QString& program, const QStringList& arguments);

}  // namespace vorli::linuxhost
