#pragma once

#include <string_view>

namespace vorli::linuxhost {

/// The profile that the power profiles service keeps in its state file: "power-saver", "balanced" or
/// "performance". A part of the text; empty when there is none.
std::string_view parsePowerProfile(std::string_view state);

}  // namespace vorli::linuxhost
