#pragma once

#include "formats/PropertyList.h"

#include <expected>
#include <string>
#include <string_view>

namespace vorli::formats {

/// True when the bytes begin like a binary property list.
bool isBinaryPropertyList(std::string_view bytes);

/// Reads the objects reachable from the root; others are ignored. Error: why the list cannot be read.
[[nodiscard]] std::expected<PropertyList, std::string> readBinaryPropertyList(std::string_view bytes);

}  // namespace vorli::formats
