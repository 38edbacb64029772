#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

/// How the kernel's small text files are cut into pieces. All of it works on outside data: what is not
/// there or does not fit is empty.
namespace vorli::linuxhost {

/// Takes the first line off the front of `text`; the newline belongs to neither.
std::string_view takeLine(std::string_view& text);

/// Takes the first word off the front of `text`: what stands up to the next blank or newline, with blanks
/// before it skipped. Empty at the end.
std::string_view takeWord(std::string_view& text);

/// A text without the blanks and newlines around it.
std::string_view trimmed(std::string_view text);

/// Decimal digits and nothing else. Empty when it does not fit 64 bits.
std::optional<std::uint64_t> parseWhole(std::string_view digits);

/// The same with an optional minus.
std::optional<std::int64_t> parseSigned(std::string_view digits);

/// Digits with an optional fraction, as in "12.34". Empty beyond 15 digits before the point.
std::optional<double> parseDecimal(std::string_view number);

}  // namespace vorli::linuxhost
