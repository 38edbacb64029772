#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace vorli {

/// A file in the user's autostart folder that keeps the system's entry of the same name from starting for
/// this user.
enum class AutostartOverride { paused, removed };

/// Returns the whole text of the override of an entry with this file name.
std::string overrideText(std::string_view fileName, AutostartOverride kind);

/// Returns the kind of an override that this program wrote and nobody has changed; empty for any other text.
std::optional<AutostartOverride> overrideKind(std::string_view fileName, std::string_view text);

}  // namespace vorli
