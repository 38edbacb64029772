#pragma once

#include "base/OnceReply.h"
#include "base/Scheduler.h"
#include "base/Task.h"
#include "base/TaskScope.h"
#include "linux/session/ShellProcess.h"
#include "linux/session/ShellPrograms.h"
#include "ports/DesktopShell.h"
#include "ports/Workspace.h"
#include "posix/SerialQueue.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace vorli::linuxhost {

class Workspace;

/// Restarts the session's panel and file manager, if it knows them: by their own command or unit where they
/// have one. Otherwise it ends each, and starts it again as it was unless the session has done so by then. A
/// file manager with windows is asked to close them, and left alone if it cannot be asked or does not do so
/// within a minute. Main thread.
class DesktopShell final : public ports::DesktopShell {
 public:
  /// Finds this session's processes of the programs, the one to restart first. Called on a second thread.
  using Find = std::function<std::vector<ShellProcess>(std::span<const ShellProgram>)>;
  /// Functions by which file managers are asked to quit.
  struct FileManagers {
    std::function<std::optional<bool>(std::int32_t pid)> hasWindows;  // empty where windows cannot be seen
    std::function<ports::QuitAnswer(std::int32_t pid)> askToQuit;
  };

  DesktopShell(Scheduler& scheduler, Workspace& workspace);
  DesktopShell(Scheduler& scheduler, FileManagers fileManagers, Find find);

  void restartDock() override;
  void restartFinder(OnceReply<std::string> cannotBeAsked) override;

 private:
  enum class Kind { panel, fileManager };
  struct ProcessEnd;  // the end of a process, for which a flow waits

  enum class End { ended, goesOn, cannotBeAsked };

  Task<> restart(Kind kind, OnceReply<std::string> cannotBeAsked);
  Task<std::vector<ShellProcess>> look(std::span<const ShellProgram> programs);
  Task<End> end(std::int32_t pid, Kind kind);
  bool mayBeSignalled(std::int32_t pid, Kind kind) const;
  Task<> untilItEnds(std::shared_ptr<ProcessEnd> end, double seconds);

  Scheduler& scheduler_;
  const FileManagers fileManagers_;
  const Find find_;
  posix::SerialQueue queue_;  // for walks over /proc
  TaskHandle panelRestart_, fileManagerRestart_;
  TaskScope tasks_;
};

}  // namespace vorli::linuxhost
