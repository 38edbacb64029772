#pragma once

#include "insights/ApplicationPathRules.h"
#include "ports/Workspace.h"

#include <optional>
#include <string>
#include <string_view>

namespace vorli {

/// The name for display: without helper suffixes or the maker's name, and with its first letter in upper
/// case. Empty for a path, an identifier, a process number or unreadable text; the user must never see those.
std::optional<std::string> cleanedApplicationName(std::string_view name);

/// The name under which the user meets a running application. Where applications are folders, the name of an
/// installed one was written for people and stays whole, except for the maker's name. Empty when it has none
/// that may be shown.
std::optional<std::string> shownApplicationName(const ports::RunningApplication& application,
                                                ApplicationPathRules::Kind kind);

}  // namespace vorli
