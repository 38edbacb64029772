#pragma once

#include "app/StatusTexts.h"
#include "base/HostSystem.h"
#include "ports/StatusItem.h"

#include <functional>
#include <vector>

namespace vorli {

/// Actions of the rows in the status item's menu.
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

/// The rows for one opening of the menu. Includes the row for updates only when they are configured.
std::vector<ports::MenuRow> statusMenu(const StatusMenuActions& actions, UpdatesState updates,
                                       const StatusTexts& texts = ofThisSystem<StatusTexts>());

}  // namespace vorli
