#pragma once

#include "ports/StatusItem.h"

#include <functional>
#include <vector>

namespace vorli {

/// What the rows of the status item's menu do.
struct StatusMenuActions {
  std::function<void()> menuClearNow;
  std::function<void()> menuRestartDock;
  std::function<void()> menuRestartFinder;
  std::function<void()> menuCheckForUpdates;
  std::function<void()> menuOpenLoginItems;
  std::function<void()> menuAbout;
  std::function<void()> menuQuit;
};

enum class UpdatesState { unconfigured, configured };

/// The rows for one opening of the menu. The row for updates is there only when they are configured.
std::vector<ports::MenuRow> statusMenu(const StatusMenuActions& actions, UpdatesState updates);

}  // namespace vorli
