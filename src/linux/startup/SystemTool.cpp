#include "linux/startup/SystemTool.h"

#include <QProcess>
#include <QProcessEnvironment>

namespace vorli::linuxhost {

namespace {

constexpr int limitMilliseconds = 10'000;
constexpr int killMilliseconds = 1'000;

}  // namespace

std::optional<ToolResult> runTool(const QString& program, const QStringList& arguments) {
  QProcess process;
  auto environment = QProcessEnvironment::systemEnvironment();
  environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C"));
  process.setProcessEnvironment(environment);
  process.setStandardInputFile(QProcess::nullDevice());
  process.setStandardErrorFile(QProcess::nullDevice());
  process.start(program, arguments, QIODevice::ReadOnly);
  if (!process.waitForFinished(limitMilliseconds)) {
    process.kill();
    process.waitForFinished(killMilliseconds);
    return std::nullopt;
  }
  if (process.exitStatus() != QProcess::NormalExit) return std::nullopt;
  return ToolResult{process.exitCode(), process.readAllStandardOutput().toStdString()};
}

}  // namespace vorli::linuxhost
