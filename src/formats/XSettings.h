#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vorli::formats {

/// Finds the text setting with this name in the bytes of an _XSETTINGS_SETTINGS property. Empty when it is
/// missing or not a text, or when the bytes before it are damaged.
std::optional<std::string> xSettingsText(std::string_view bytes, std::string_view name);

/// Finds the integer setting with this name; empty in the same cases.
std::optional<std::int32_t> xSettingsNumber(std::string_view bytes, std::string_view name);

}  // namespace vorli::formats
