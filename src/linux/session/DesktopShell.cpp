#include "linux/session/DesktopShell.h"

#include "base/AwaitedReply.h"
#include "base/DeadlineRace.h"
#include "base/OnceReply.h"
#include "base/Sleep.h"
#include "linux/applications/ProcessExit.h"
#include "linux/applications/Workspace.h"
#include "linux/session/DesktopLog.h"

#include <QFileInfo>
#include <QProcess>
#include <QProcessEnvironment>
#include <QString>
#include <QStringList>
#include <algorithm>
#include <memory>
#include <string>
#include <utility>

namespace vorli::linuxhost {

namespace {

struct DesktopShellTimings {
  static constexpr double fileManagerAnswers = 60.0;  // it may ask the user
  static constexpr double look = 1.0;                 // interval of the checks whether its windows are closed
  static constexpr double signalTakes = 5.0;
  static constexpr double comesBack = 2.0;  // a session takes a second to restart a program
};

}  // namespace

struct DesktopShell::ProcessEnd {
  bool hasCome = false;
  OnceReply<bool> waiting;
};

namespace {

QStringList argumentsOf(const std::vector<std::string>& command) {
  QStringList arguments;
  for (std::size_t i = 1; i < command.size(); ++i) arguments << QString::fromStdString(command[i]);
  return arguments;
}

// Passes on the environment of the ended process: ours has settings that are meant for this program alone.
void start(const std::vector<std::string>& command, const ShellProcess& likeThis) {
  QProcessEnvironment environment;
  for (const auto& entry : likeThis.environment) {
    const auto equals = entry.find('=');
    if (equals == std::string::npos) continue;
    environment.insert(QString::fromStdString(entry.substr(0, equals)),
                       QString::fromStdString(entry.substr(equals + 1)));
  }
  QProcess process;
  process.setProgram(QString::fromStdString(command.front()));
  process.setArguments(argumentsOf(command));
  const auto folder = QString::fromStdString(likeThis.folder);
  if (QFileInfo(folder).isDir()) process.setWorkingDirectory(folder);  // it may have been removed
  if (!environment.isEmpty()) process.setProcessEnvironment(environment);
  if (!process.startDetached()) desktopLog.error("%{public}s could not be started", command.front());
}

// Returns the command with which the program restarts itself; empty when there is none.
std::vector<std::string> restartCommandOf(const ShellProcess& process) {
  const auto& command = process.program.restartCommand;
  const auto unit = process.program.unit;
  if (!unit.empty() && process.unit == unit) return {"systemctl", "--user", "restart", std::string(unit)};
  if (command.front().empty()) return {};
  return {std::string(command.front()), std::string(command.back())};
}

bool isIn(const std::vector<ShellProcess>& processes, std::int32_t pid) {
  return std::ranges::find(processes, pid, &ShellProcess::pid) != processes.end();
}

bool isBack(const ShellProcess& ended, const std::vector<ShellProcess>& before,
            const std::vector<ShellProcess>& now) {
  return std::ranges::any_of(now, [&](const ShellProcess& process) {
    return process.program.processName == ended.program.processName && !isIn(before, process.pid);
  });
}

}  // namespace

DesktopShell::DesktopShell(Scheduler& scheduler, Workspace& workspace)
    : DesktopShell(scheduler,
                   {.hasWindows = [&workspace](std::int32_t pid) { return workspace.hasWindows(pid); },
                    .askToQuit = [&workspace](std::int32_t pid) { return workspace.terminate(pid); }},
                   [session = ShellSession::ofThisProgram()](std::span<const ShellProgram> programs) {
                     return shellProcesses(programs, session);
                   }) {}

DesktopShell::DesktopShell(Scheduler& scheduler, FileManagers fileManagers, Find find)
    : scheduler_(scheduler),
      fileManagers_(std::move(fileManagers)),
      find_(std::move(find)),
      tasks_(scheduler) {}

void DesktopShell::restartDock() {
  if (!panelRestart_.isRunning()) panelRestart_ = tasks_.spawn(restart(Kind::panel, {}));
}

void DesktopShell::restartFinder(OnceReply<std::string> cannotBeAsked) {
  if (fileManagerRestart_.isRunning()) return;
  fileManagerRestart_ = tasks_.spawn(restart(Kind::fileManager, std::move(cannotBeAsked)));
}

Task<> DesktopShell::restart(Kind kind, OnceReply<std::string> cannotBeAsked) {
  const auto programs = kind == Kind::panel ? shellPanels() : shellFileManagers();
  const auto before = co_await look(programs);
  if (before.empty()) co_return;
  const ShellProcess& process = before.front();
  const auto restartCommand = restartCommandOf(process);
  if (!restartCommand.empty()) {
    start(restartCommand, process);
    co_return;
  }

  const End outcome = co_await end(process.pid, kind);
  if (outcome != End::ended) {
    desktopLog.log("%{public}s goes on and is not restarted", process.program.processName);
    if (outcome == End::cannotBeAsked) std::move(cannotBeAsked)(std::string(nameOf(process.program)));
    co_return;
  }
  co_await sleepFor(scheduler_, DesktopShellTimings::comesBack);
  const auto now = co_await look(programs);
  if (!isBack(process, before, now)) start(process.command, process);
}

Task<std::vector<ShellProcess>> DesktopShell::look(std::span<const ShellProgram> programs) {
  AwaitedReply<std::vector<ShellProcess>> found(scheduler_);
  queue_.post(
      [reply = found.reply(), programs, find = find_]() mutable { std::move(reply)(find(programs)); });
  co_return co_await found;
}

bool DesktopShell::mayBeSignalled(std::int32_t pid, Kind kind) const {
  return kind == Kind::panel || !fileManagers_.hasWindows(pid).value_or(true);
}

// A file manager that has closed its windows may remain in the background, where it has no unsaved work. One
// whose windows are invisible gets no signal, because nothing shows whether it understood the request.
Task<DesktopShell::End> DesktopShell::end(std::int32_t pid, Kind kind) {
  const auto end = std::make_shared<ProcessEnd>();
  const ProcessExit process(pid, [end] {
    end->hasCome = true;
    std::move(end->waiting)(true);
  });
  if (!mayBeSignalled(pid, kind)) {
    if (fileManagers_.askToQuit(pid) != ports::QuitAnswer::asked)
      co_return process.answerToTermination() == ports::QuitAnswer::gone ? End::ended : End::cannotBeAsked;
    const double givesUpAt = scheduler_.now() + DesktopShellTimings::fileManagerAnswers;
    while (!end->hasCome && !mayBeSignalled(pid, kind) && scheduler_.now() < givesUpAt)
      co_await untilItEnds(end, DesktopShellTimings::look);
    if (!end->hasCome && !mayBeSignalled(pid, kind))
      co_return fileManagers_.hasWindows(pid).has_value() ? End::goesOn : End::cannotBeAsked;
  }
  if (!end->hasCome && process.requestTermination() == ports::QuitAnswer::asked)
    co_await untilItEnds(end, DesktopShellTimings::signalTakes);
  co_return end->hasCome || !process.isHeld() ? End::ended : End::goesOn;
}

Task<> DesktopShell::untilItEnds(std::shared_ptr<ProcessEnd> end, double seconds) {
  if (end->hasCome) co_return;
  DeadlineRace<bool> race(scheduler_, seconds);
  end->waiting = race.reply();
  co_await race;
}

}  // namespace vorli::linuxhost
