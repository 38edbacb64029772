#pragma once

#include <string_view>

namespace vorli::formats {

/// The profile that the power profiles service keeps in its state file: "power-saver", "balanced" or
/// "performance". The result is a part of `state`; empty when there is none.
std::string_view parsePowerProfile(std::string_view state);

}  // namespace vorli::formats
