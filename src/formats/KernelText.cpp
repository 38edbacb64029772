#include "formats/KernelText.h"

#include <algorithm>
#include <charconv>

namespace vorli::formats {

namespace {

constexpr std::size_t mostDigits = 15;  // a double represents this many exactly

bool isBlank(char c) {
  return c == ' ' || c == '\n' || c == '\t';
}

template <typename Number>
std::optional<Number> parseNumber(std::string_view digits) {
  Number number{};
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  if (error != std::errc() || end != digits.data() + digits.size()) return std::nullopt;
  return number;
}

}  // namespace

std::string_view takeLine(std::string_view& text) {
  const auto end = std::min(text.find('\n'), text.size());
  const auto line = text.substr(0, end);
  text.remove_prefix(std::min(end + 1, text.size()));
  return line;
}

std::string_view takeWord(std::string_view& text) {
  const auto first = std::ranges::find_if_not(text, isBlank);
  const auto last = std::find_if(first, text.end(), isBlank);
  text = {last, text.end()};
  return {first, last};
}

std::optional<std::uint64_t> parseWhole(std::string_view digits) {
  return parseNumber<std::uint64_t>(digits);
}

std::optional<std::int64_t> parseSigned(std::string_view digits) {
  return parseNumber<std::int64_t>(digits);
}

std::optional<double> parseDecimal(std::string_view number) {
  const auto point = std::min(number.find('.'), number.size());
  const auto whole = number.substr(0, point);
  const auto fraction = number.substr(std::min(point + 1, number.size()));
  if (whole.empty() || whole.size() > mostDigits) return std::nullopt;
  if (!std::ranges::all_of(whole, isDigit) || !std::ranges::all_of(fraction, isDigit)) return std::nullopt;

  // One division of two exact numbers gives the double that is nearest to the text.
  double digits = static_cast<double>(*parseWhole(whole));
  double scale = 1.0;
  for (const char digit : fraction.substr(0, mostDigits - whole.size())) {
    digits = digits * 10.0 + (digit - '0');
    scale *= 10.0;
  }
  return digits / scale;
}

}  // namespace vorli::formats
