#include "formats/DesktopLine.h"

#include "base/Blanks.h"

namespace vorli::formats {

namespace {

constexpr std::string_view escapeLetters = "sntr\\", escapedCharacters = " \n\t\r\\";

}  // namespace

DesktopLine splitDesktopLine(std::string_view line) {
  line = withoutBlanks(line);
  if (line.starts_with('#')) return {};
  if (line.starts_with('[')) return {.group = line, .key = {}, .value = {}};
  const auto equals = line.find('=');
  if (equals == std::string_view::npos) return {};
  return {.group = {},
          .key = withoutBlanks(line.substr(0, equals)),
          .value = withoutBlanks(line.substr(equals + 1))};
}

std::string desktopText(std::string_view value) {
  if (!value.contains('\\')) return std::string(value);
  std::string text;
  for (std::size_t i = 0; i < value.size(); ++i) {
    const bool isEscape = value[i] == '\\' && i + 1 < value.size();
    const auto letter = isEscape ? escapeLetters.find(value[i + 1]) : escapeLetters.npos;
    if (letter == escapeLetters.npos) {
      text += value[i];
    } else {
      text += escapedCharacters[letter];
      ++i;
    }
  }
  return text;
}

std::vector<std::string> desktopList(std::string_view value) {
  std::vector<std::string> texts;
  std::string raw;
  const auto finish = [&] {
    if (!raw.empty()) texts.push_back(desktopText(raw));
    raw.clear();
  };
  for (std::size_t i = 0; i < value.size(); ++i) {
    const bool isEscape = value[i] == '\\' && i + 1 < value.size();
    if (isEscape && value[i + 1] == ';') {
      raw += value[++i];
    } else if (isEscape) {
      raw.append(value.substr(i++, 2));
    } else if (value[i] == ';') {
      finish();
    } else {
      raw += value[i];
    }
  }
  finish();
  return texts;
}

}  // namespace vorli::formats
