#pragma once

#include <expected>
#include <string>
#include <string_view>

namespace vorli::formats {

/// Converts an XML document to UTF-8 without a byte order mark. Its encoding is given by that mark (UTF-8,
/// UTF-16, UTF-32), else by the declaration (UTF-8, US-ASCII, ISO-8859-1); without either it is UTF-8. Error:
/// the encoding is none of these, or the bytes are not valid in it.
[[nodiscard]] std::expected<std::string, std::string> decodeXML(std::string_view bytes);

}  // namespace vorli::formats
