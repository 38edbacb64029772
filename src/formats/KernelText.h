#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

/// Parsing of the kernel's small text files. The input is untrusted: a value that is missing or out of range
/// reads as empty.
namespace vorli::formats {

/// True for a decimal digit of ASCII.
constexpr bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

/// Takes the first line off the front of `text`; the newline belongs to neither.
std::string_view takeLine(std::string_view& text);

/// Takes the first word off the front of `text`: skips leading blanks and ends before the next blank or
/// newline. Empty at the end.
std::string_view takeWord(std::string_view& text);

/// Parses decimal digits and nothing else. Empty when the number does not fit into 64 bits.
std::optional<std::uint64_t> parseWhole(std::string_view digits);

/// Like `parseWhole`, with an optional minus sign.
std::optional<std::int64_t> parseSigned(std::string_view digits);

/// Parses digits with an optional fraction, as in "12.34". Empty beyond 15 digits before the point.
std::optional<double> parseDecimal(std::string_view number);

}  // namespace vorli::formats
