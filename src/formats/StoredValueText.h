#pragma once

#include "base/StoredValue.h"

#include <optional>
#include <string>
#include <vector>

namespace vorli::formats {

// Typed values in a file of settings whose own values are texts and lists of texts. Booleans and numbers are
// written plainly, so that a person can edit them. A value that would otherwise be read as another type gets
// a mark:
//   true  60  0.5  opt+shift+C  "@String 60"  "@Date 1700000000.25"  "@Strings, a, b"
//   "@Dictionary, key, @Date 1700000000.25, other key, 60"

/// Returns the texts for a value: never empty, and a single one unless the value is a list or a dictionary
/// with something in it. A number that is not finite becomes a text.
std::vector<std::string> storedTexts(const StoredValue& value);

/// Parses a stored text, which may be "", or a stored list. Empty for a malformed value with a mark; a
/// dictionary loses only its malformed entries. A list without a mark is one text with commas.
std::optional<StoredValue> parseStoredTexts(const std::vector<std::string>& texts);

}  // namespace vorli::formats
