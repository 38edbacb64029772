#pragma once

#include "base/Date.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vorli::formats {

// Parsers for the contents of a property list's XML elements. Each takes the whole text between the tags, and
// returns nothing when the text is not valid for the element.

/// True for white space between elements.
constexpr bool isXMLBlank(char c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

/// Accepts leading white space, a sign, then digits, or hexadecimal digits after "0x". Numbers above the
/// signed 64 bits keep their 64 bits.
std::optional<std::int64_t> parseXMLInteger(std::string_view content);

/// Accepts a decimal number, and the words for the infinities and for NaN.
std::optional<double> parseXMLReal(std::string_view content);

/// Accepts only YYYY-MM-DDThh:mm:ssZ.
std::optional<Date> parseXMLDate(std::string_view content);

/// Decodes Base64. Skips all other characters; drops an incomplete last group.
std::string decodeXMLData(std::string_view content);

/// Reads the entity or character reference at the front of `rest`, appends its character and moves `rest`
/// past it. False for an unknown one.
[[nodiscard]] bool takeXMLReference(std::string_view& rest, std::string& text);

}  // namespace vorli::formats
