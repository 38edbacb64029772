#pragma once

#include "ports/ApplicationBundle.h"
#include "ports/Workspace.h"

#include <string_view>

namespace vorli {

// Both only ask: an application may refuse, or ask its user first. Neither ever asks the program itself. Main
// thread.

/// Asks the first application that bears this name. The whole name counts, without regard to case; the
/// maker's name in front may be missing, and the name of its bundle's file counts too. False when there is
/// none, or it could not be asked.
bool quitByName(ports::Workspace& workspace, const ports::ApplicationBundle& self, std::string_view name);

/// Asks every full application that has no window on the screen. With no window on the screen at all that is
/// every one; where windows cannot be seen, nobody is asked. Blocks for one look at the windows.
void quitHiddenApps(ports::Workspace& workspace, const ports::ApplicationBundle& self);

}  // namespace vorli
