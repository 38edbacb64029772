#include "formats/StoredValueText.h"

#include "formats/XMLScalars.h"

#include <array>
#include <charconv>
#include <cmath>
#include <string_view>
#include <utility>

namespace vorli::formats {

namespace {

constexpr std::string_view stringMark = "@String ";
constexpr std::string_view dateMark = "@Date ";
constexpr std::string_view listMark = "@Strings";
constexpr std::string_view dictionaryMark = "@Dictionary";

// Longer than any number that is written here: the largest one has 309 digits before its point.
using Digits = std::array<char, 400>;

template <typename Number, typename... Format>
std::string numberText(Number number, Format... format) {
  Digits digits;
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number, format...).ptr;
  return {digits.data(), end};
}

// The shortest text that is read back as the same number, without an exponent where people write none.
std::string realText(double real) {
  const double size = std::abs(real);
  const bool isPlain = size == 0 || (size >= 1e-5 && size < 1e15);
  auto text = numberText(real, isPlain ? std::chars_format::fixed : std::chars_format::scientific);
  if (std::isfinite(real) && text.find_first_of(".e") == std::string::npos) text += ".0";
  return text;
}

std::optional<double> finiteReal(std::string_view text) {
  const auto real = parseXMLReal(text);
  return real && std::isfinite(*real) ? real : std::nullopt;
}

// Interprets an unmarked text. It is a number only in the exact spelling that this file writes; any other
// text stays a text.
StoredEntry plainValue(const std::string& text) {
  if (text == "true") return true;
  if (text == "false") return false;
  std::int64_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error == std::errc{} && numberText(number) == text) return number;
  if (const auto real = finiteReal(text); real && realText(*real) == text) return *real;
  return text;
}

std::string plainText(const std::string& text) {
  const bool staysText = std::holds_alternative<std::string>(plainValue(text)) && !text.starts_with('@');
  return staysText ? text : std::string(stringMark) + text;
}

struct EntryWriter {
  std::string operator()(bool flag) const { return flag ? "true" : "false"; }
  std::string operator()(std::int64_t number) const { return numberText(number); }
  std::string operator()(double real) const { return realText(real); }
  std::string operator()(const std::string& text) const { return plainText(text); }
  std::string operator()(Date date) const {
    constexpr int microseconds = 6;
    return std::string(dateMark) + numberText(date.secondsSince1970, std::chars_format::fixed, microseconds);
  }
};

struct Writer {
  std::vector<std::string> operator()(const std::vector<std::string>& list) const {
    std::vector<std::string> texts{std::string(listMark)};
    texts.insert(texts.end(), list.begin(), list.end());
    return texts;
  }
  std::vector<std::string> operator()(const StoredDictionary& dictionary) const {
    std::vector<std::string> texts{std::string(dictionaryMark)};
    for (const auto& [key, entry] : dictionary) {
      texts.push_back(key);
      texts.push_back(std::visit(EntryWriter{}, entry));
    }
    return texts;
  }
  std::vector<std::string> operator()(const auto& entry) const { return {EntryWriter{}(entry)}; }
};

std::optional<StoredEntry> parseEntry(const std::string& text) {
  if (text.starts_with(stringMark)) return text.substr(stringMark.size());
  if (text.starts_with(dateMark)) {
    const auto seconds = finiteReal(std::string_view(text).substr(dateMark.size()));
    if (!seconds) return std::nullopt;
    return Date{*seconds};
  }
  if (text.starts_with('@')) return std::nullopt;
  return plainValue(text);
}

StoredDictionary parseDictionary(const std::vector<std::string>& texts) {
  StoredDictionary dictionary;
  for (std::size_t i = 1; i + 1 < texts.size(); i += 2) {
    if (auto entry = parseEntry(texts[i + 1])) dictionary[texts[i]] = std::move(*entry);
  }
  return dictionary;
}

std::string withCommas(const std::vector<std::string>& texts) {
  std::string all = texts.front();
  for (std::size_t i = 1; i < texts.size(); ++i) all += ", " + texts[i];
  return all;
}

}  // namespace

std::vector<std::string> storedTexts(const StoredValue& value) {
  return std::visit(Writer{}, value);
}

std::optional<StoredValue> parseStoredTexts(const std::vector<std::string>& texts) {
  if (texts.empty()) return std::string();
  const auto& first = texts.front();
  if (first == listMark) return std::vector<std::string>(texts.begin() + 1, texts.end());
  if (first == dictionaryMark) return parseDictionary(texts);
  if (texts.size() > 1) {
    if (first.starts_with('@')) return std::nullopt;
    return withCommas(texts);
  }
  const auto entry = parseEntry(first);
  if (!entry) return std::nullopt;
  return std::visit([](const auto& held) { return StoredValue(held); }, *entry);
}

}  // namespace vorli::formats
