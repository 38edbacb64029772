#pragma once

#include "base/HostSystem.h"
#include "insights/ApplicationPathRules.h"
#include "ports/ApplicationBundle.h"
#include "ports/Workspace.h"

#include <string_view>

namespace vorli {

// Both functions only ask: an application may refuse, or ask its user first. Neither quits this program. Main
// thread.

/// Asks the first application with this name to quit; if it cannot be asked, the next one is. The whole name
/// must match, ignoring case; a leading maker's name may be missing, and the file name of the bundle matches
/// too. Where applications are folders, the name that is shown to the user comes before all others. `gone`
/// when there is no such application.
ports::QuitAnswer quitByName(ports::Workspace& workspace, const ports::ApplicationBundle& self,
                             std::string_view name,
                             const ApplicationPathRules& rules = ofThisSystem<ApplicationPathRules>());

/// The answer that `quitByName` would give now. Asks nobody.
ports::QuitAnswer answerToQuitByName(
    ports::Workspace& workspace, const ports::ApplicationBundle& self, std::string_view name,
    const ApplicationPathRules& rules = ofThisSystem<ApplicationPathRules>());

/// Asks every regular application without a window on the screen to quit; with no window on the screen at
/// all, that is every one. Where windows cannot be listed, no application is asked. Blocks while the windows
/// are listed.
void quitHiddenApps(ports::Workspace& workspace, const ports::ApplicationBundle& self);

}  // namespace vorli
