#include "settings/UserDefaults.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <string_view>

namespace vorli {

namespace {

// Parses a text as a whole number; empty when it is not one.
std::optional<std::int64_t> spelledInteger(std::string_view text) {
  if (text.starts_with('+') && !text.starts_with("+-")) text.remove_prefix(1);
  std::int64_t number = 0;
  const auto end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  if (error != std::errc() || stop != end) return std::nullopt;
  return number;
}

bool equalIgnoringCase(std::string_view text, std::string_view lowerCase) {
  const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
  return std::equal(text.begin(), text.end(), lowerCase.begin(), lowerCase.end(),
                    [&](char a, char b) { return lower(a) == b; });
}

// Drops the fraction; values out of range are clamped.
std::int64_t truncated(double number) {
  constexpr double limit = 9223372036854775808.0;  // 2^63
  if (std::isnan(number)) return 0;
  if (number >= limit) return std::numeric_limits<std::int64_t>::max();
  if (number < -limit) return std::numeric_limits<std::int64_t>::min();
  return static_cast<std::int64_t>(number);
}

// The stored value; empty unless it has exactly this type.
template <typename T>
std::optional<T> typedObject(const ports::KeyValueStore& defaults, const std::string& key) {
  auto value = defaults.object(key);
  if (!value) return std::nullopt;
  auto* typed = std::get_if<T>(&*value);
  if (!typed) return std::nullopt;
  return std::move(*typed);
}

}  // namespace

bool boolForKey(const ports::KeyValueStore& defaults, const std::string& key) {
  const auto value = defaults.object(key);
  if (!value) return false;
  if (const auto* flag = std::get_if<bool>(&*value)) return *flag;
  if (const auto* number = std::get_if<std::int64_t>(&*value)) return *number != 0;
  if (const auto* number = std::get_if<double>(&*value)) return *number != 0.0;
  if (const auto* text = std::get_if<std::string>(&*value)) {
    return equalIgnoringCase(*text, "yes") || equalIgnoringCase(*text, "true") ||
           spelledInteger(*text).value_or(0) != 0;
  }
  return false;
}

std::int64_t integerForKey(const ports::KeyValueStore& defaults, const std::string& key) {
  const auto value = defaults.object(key);
  if (!value) return 0;
  if (const auto* flag = std::get_if<bool>(&*value)) return *flag ? 1 : 0;
  if (const auto* number = std::get_if<std::int64_t>(&*value)) return *number;
  if (const auto* number = std::get_if<double>(&*value)) return truncated(*number);
  if (const auto* text = std::get_if<std::string>(&*value)) return spelledInteger(*text).value_or(0);
  return 0;
}

std::optional<std::string> stringForKey(const ports::KeyValueStore& defaults, const std::string& key) {
  return typedObject<std::string>(defaults, key);
}

std::optional<Date> dateForKey(const ports::KeyValueStore& defaults, const std::string& key) {
  return typedObject<Date>(defaults, key);
}

std::vector<std::string> stringArrayForKey(const ports::KeyValueStore& defaults, const std::string& key) {
  return typedObject<std::vector<std::string>>(defaults, key).value_or(std::vector<std::string>());
}

}  // namespace vorli
