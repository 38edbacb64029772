#pragma once

#include "formats/DesktopEntry.h"
#include "linux/applications/WindowList.h"
#include "ports/Workspace.h"

#include <optional>
#include <vector>

namespace vorli::linuxhost {

/// A record with what an entry says of its application, without a process.
ports::RunningApplication recordOf(const formats::DesktopEntry& entry);

/// A record with the name that a program gives its windows; empty when they have none.
std::optional<ports::RunningApplication> recordOf(const std::vector<DesktopWindow>& windows);

}  // namespace vorli::linuxhost
