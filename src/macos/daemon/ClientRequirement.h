#pragma once

#include <optional>
#include <string>

namespace vorli::machost {

/// The code-signing requirement that a client must satisfy: the application, signed by the team that signed
/// this daemon. Empty when the daemon is not signed by a team, as in a development build: nothing then
/// distinguishes the application from any other program.
std::optional<std::string> clientRequirement();

}  // namespace vorli::machost
