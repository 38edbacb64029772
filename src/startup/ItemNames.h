#pragma once

#include "base/HostSystem.h"
#include "startup/RawCandidate.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vorli {

/// Returns the pieces of an identifier between its dots; empty pieces are left out.
std::vector<std::string_view> identifierPieces(std::string_view identifier);

/// Makes a name from an identifier: "com.acme.cloud-agent" gives "Acme Cloud Agent".
std::string prettyName(std::string_view identifier);

/// Returns who installed the item: "you" if its file is in the user's own folder, otherwise the application's
/// name, or a word of the path or the identifier. Empty when unknown.
std::optional<std::string> installerName(const RawCandidate& candidate,
                                         const std::optional<Resolved>& resolved,
                                         HostSystem system = hostSystem);

}  // namespace vorli
