#pragma once

#include "formats/PropertyList.h"

#include <expected>
#include <string>
#include <string_view>

namespace vorli::formats {

/// Reads a property list in XML, as leniently as the system that writes them does: the plist element and all
/// declarations may be missing, and everything after the root element is ignored. Error: why the list cannot
/// be read.
[[nodiscard]] std::expected<PropertyList, std::string> readXMLPropertyList(std::string_view bytes);

}  // namespace vorli::formats
