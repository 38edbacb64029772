#include "linux/startup/LaunchControl.h"

#include "base/Blanks.h"
#include "base/FilePath.h"
#include "linux/startup/SystemTool.h"

#include <string_view>

namespace vorli::linuxhost {

namespace {

constexpr std::string_view autostartSuffix = ".desktop";

bool isEntry(const std::string& path) {
  return path.ends_with(autostartSuffix);
}

std::optional<ToolResult> systemctl(const QStringList& arguments) {
  return runTool(QStringLiteral("systemctl"), QStringList{QStringLiteral("--user")} + arguments);
}

// Checks the tool's output, because its exit code is also 0 for a service that only a timer or socket starts:
// a nightly task must not run at the moment when it is resumed.
bool isEnabledByItself(std::string_view state) {
  return withoutBlanks(state) == "enabled" || withoutBlanks(state) == "enabled-runtime";
}

bool isPlain(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == ':' || c == '_' ||
         c == '.';
}

}  // namespace

// Escapes like the service manager: a leading dot and every byte that is not plain are replaced by their
// numbers.
std::string autostartUnitName(const std::string& fileName) {
  constexpr std::string_view digits = "0123456789abcdef";
  const auto stem = fileName.substr(0, fileName.size() - (isEntry(fileName) ? autostartSuffix.size() : 0));
  std::string escaped;
  for (const char c : stem) {
    if (isPlain(c) && !(c == '.' && escaped.empty())) {
      escaped += c;
      continue;
    }
    const auto byte = static_cast<unsigned char>(c);
    escaped += "\\x";
    escaped += digits[byte / 16];
    escaped += digits[byte % 16];
  }
  return "app-" + escaped + "@autostart.service";
}

void LaunchControl::load(const std::string& path) {
  if (isEntry(path)) return;
  const auto unit = QString::fromStdString(fileName(path));
  const auto state = systemctl({QStringLiteral("is-enabled"), QStringLiteral("--"), unit});
  if (state && isEnabledByItself(state->output))
    systemctl({QStringLiteral("start"), QStringLiteral("--no-block"), QStringLiteral("--"), unit});
}

void LaunchControl::unload(const std::string& path) {
  const auto name = fileName(path);
  const auto unit = QString::fromStdString(isEntry(path) ? autostartUnitName(name) : name);
  systemctl({QStringLiteral("stop"), QStringLiteral("--"), unit});
}

void LaunchControl::reload() {
  systemctl({QStringLiteral("daemon-reload")});
}

}  // namespace vorli::linuxhost
