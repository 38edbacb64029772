#include "formats/XMLScalars.h"

#include "base/UTF8.h"
#include "base/UnicodeText.h"
#include "formats/KernelText.h"

#include <array>
#include <charconv>
#include <chrono>
#include <limits>
#include <locale>
#include <sstream>
#include <utility>

namespace vorli::formats {

namespace {

void skipBlanks(std::string_view& text) {
  while (!text.empty() && isXMLBlank(text.front())) text.remove_prefix(1);
}

// Removes the sign at the front; true for a minus.
bool takeSign(std::string_view& text) {
  if (text.empty() || (text[0] != '+' && text[0] != '-')) return false;
  const bool isNegative = text[0] == '-';
  text.remove_prefix(1);
  return isNegative;
}

// Parses the whole text as one number without a sign.
template <typename Number>
std::optional<Number> parseDigits(std::string_view digits, int base) {
  Number value = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value, base);
  if (error != std::errc{} || end != digits.data() + digits.size()) return std::nullopt;
  return value;
}

std::optional<double> realWord(std::string_view text) {
  const bool isNegative = takeSign(text);
  const auto word = lowercased(text);
  constexpr double infinity = std::numeric_limits<double>::infinity();
  if (word == "nan") return std::numeric_limits<double>::quiet_NaN();
  if (word == "inf" || word == "infinity") return isNegative ? -infinity : infinity;
  return std::nullopt;
}

// True for digits with at most one point, then an exponent: a stream reads other notations, too.
bool isDecimal(std::string_view text) {
  const auto takeDigits = [&text] {
    std::size_t count = 0;
    while (count < text.size() && isDigit(text[count])) ++count;
    text.remove_prefix(count);
    return count;
  };
  takeSign(text);
  auto digits = takeDigits();
  if (text.starts_with('.')) {
    text.remove_prefix(1);
    digits += takeDigits();
  }
  if (digits == 0) return false;
  if (text.starts_with('e') || text.starts_with('E')) {
    text.remove_prefix(1);
    takeSign(text);
    if (takeDigits() == 0) return false;
  }
  return text.empty();
}

constexpr std::string_view base64Digits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

constexpr std::array<std::int8_t, 256> base64Values = [] {
  std::array<std::int8_t, 256> values{};
  values.fill(-1);
  for (std::size_t i = 0; i < base64Digits.size(); ++i) {
    values[static_cast<unsigned char>(base64Digits[i])] = static_cast<std::int8_t>(i);
  }
  values['='] = 0;
  return values;
}();

}  // namespace

std::optional<std::int64_t> parseXMLInteger(std::string_view content) {
  skipBlanks(content);
  const bool isNegative = takeSign(content);
  const bool isHexadecimal = content.starts_with("0x") || content.starts_with("0X");
  if (isHexadecimal) content.remove_prefix(2);
  const auto magnitude = parseDigits<std::uint64_t>(content, isHexadecimal ? 16 : 10);
  if (!magnitude || (isNegative && *magnitude > std::uint64_t{1} << 63)) return std::nullopt;
  return static_cast<std::int64_t>(isNegative ? 0 - *magnitude : *magnitude);
}

std::optional<double> parseXMLReal(std::string_view content) {
  skipBlanks(content);
  if (!isDecimal(content)) return realWord(content);
  // The stream expects a decimal point in every language. Out of range, it returns the nearest number.
  std::istringstream stream{std::string(content)};
  stream.imbue(std::locale::classic());
  double value = 0.0;
  stream >> value;
  return value;
}

std::optional<Date> parseXMLDate(std::string_view content) {
  constexpr std::string_view pattern = "dddd-dd-ddTdd:dd:ddZ";
  if (content.size() != pattern.size()) return std::nullopt;
  for (std::size_t i = 0; i < pattern.size(); ++i) {
    if (pattern[i] == 'd' ? !isDigit(content[i]) : content[i] != pattern[i]) return std::nullopt;
  }
  const auto part = [content](std::size_t start, std::size_t length) {
    return *parseDigits<unsigned>(content.substr(start, length), 10);
  };
  const auto hour = part(11, 2), minute = part(14, 2), second = part(17, 2);
  const auto day = std::chrono::year(static_cast<int>(part(0, 4))) / part(5, 2) / part(8, 2);
  if (!day.ok() || hour > 23 || minute > 59 || second > 59) return std::nullopt;
  const auto days = std::chrono::sys_days(day).time_since_epoch().count();
  return Date{static_cast<double>(days) * 86400.0 + hour * 3600.0 + minute * 60.0 + second};
}

std::string decodeXMLData(std::string_view content) {
  std::string data;
  std::uint32_t group = 0;
  int digits = 0, padding = 0;  // padding: equals signs after the last other digit
  for (const char c : content) {
    const auto value = base64Values[static_cast<unsigned char>(c)];
    if (value < 0) continue;
    padding = c == '=' ? padding + 1 : 0;
    group = group << 6 | static_cast<std::uint32_t>(value);
    if (++digits < 4) continue;
    data += static_cast<char>(group >> 16 & 0xFF);
    if (padding < 2) data += static_cast<char>(group >> 8 & 0xFF);
    if (padding < 1) data += static_cast<char>(group & 0xFF);
    group = 0;
    digits = 0;
  }
  return data;
}

bool takeXMLReference(std::string_view& rest, std::string& text) {
  static constexpr std::pair<std::string_view, char> entities[] = {
      {"&lt;", '<'}, {"&gt;", '>'}, {"&amp;", '&'}, {"&quot;", '"'}, {"&apos;", '\''}};
  for (const auto& [name, character] : entities) {
    if (rest.starts_with(name)) {
      text += character;
      rest.remove_prefix(name.size());
      return true;
    }
  }
  if (!rest.starts_with("&#")) return false;
  constexpr std::size_t mostDigits = 8;
  auto digits = rest.substr(2, mostDigits + 2);
  digits = digits.substr(0, digits.find(';'));
  const bool isHexadecimal = digits.starts_with('x');
  const auto length = 2 + digits.size() + 1;  // including the semicolon
  if (length > rest.size() || rest[length - 1] != ';') return false;
  if (isHexadecimal) digits.remove_prefix(1);
  const auto character = parseDigits<std::uint32_t>(digits, isHexadecimal ? 16 : 10);
  if (digits.size() > mostDigits || !character || *character > 0x10FFFF) return false;
  appendUTF8(text, *character);
  rest.remove_prefix(length);
  return true;
}

}  // namespace vorli::formats
