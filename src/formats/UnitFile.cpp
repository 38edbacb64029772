#include "formats/UnitFile.h"

#include "base/Blanks.h"
#include "base/UTF8.h"
#include "formats/KernelText.h"

#include <algorithm>
#include <array>

namespace vorli::formats {

namespace {

bool isComment(std::string_view line) {
  return line.starts_with('#') || line.starts_with(';');
}

std::string_view withoutEnd(std::string_view line) {
  return line.ends_with('\r') ? line.substr(0, line.size() - 1) : line;
}

// A backslash at the end of a line continues it; comments between the pieces are left out. `joined` holds the
// line if it has several pieces.
std::string_view takeLogicalLine(std::string_view& rest, std::string& joined) {
  const auto first = withoutEnd(takeLine(rest));
  if (!first.ends_with('\\')) return first;
  auto& line = joined.assign(first.substr(0, first.size() - 1));
  line += ' ';
  for (bool continues = true; continues && !rest.empty();) {
    const auto piece = withoutEnd(takeLine(rest));
    if (!line.empty() && isComment(withoutBlanks(piece))) continue;
    continues = piece.ends_with('\\');
    line += continues ? piece.substr(0, piece.size() - 1) : piece;
    if (continues) line += ' ';
  }
  return line;
}

int hexValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

// Decodes the escape after a backslash: a byte given by its number, a blank, or the character itself.
char takeEscape(std::string_view rest, std::size_t& i) {
  const char c = rest[i];
  if (c == 's') return ' ';
  if (c != 'x' || i + 2 >= rest.size()) return c;
  const int high = hexValue(rest[i + 1]), low = hexValue(rest[i + 2]);
  if (high < 0 || low < 0 || high + low == 0) return c;
  i += 2;
  return static_cast<char>(high * 16 + low);
}

// Removes the next word of a command line and returns it; quotes of either kind may enclose any part of it.
std::string takeQuotedWord(std::string_view& rest) {
  rest = withoutBlanks(rest);
  std::string word;
  char quote = 0;
  std::size_t i = 0;
  for (; i < rest.size(); ++i) {
    const char c = rest[i];
    if (quote == 0 && (c == ' ' || c == '\t')) break;
    if (c == quote) {
      quote = 0;
    } else if (quote == 0 && (c == '"' || c == '\'')) {
      quote = c;
    } else {
      const bool isEscape = c == '\\' && i + 1 < rest.size();
      word += isEscape ? takeEscape(rest, ++i) : c;
    }
  }
  rest.remove_prefix(i);
  return word;
}

bool isServiceWrapper(std::string_view program) {
  constexpr std::array<std::string_view, 5> wrappers{"env", "nice", "ionice", "setsid", "nohup"};
  const auto name = program.substr(program.rfind('/') + 1);
  return std::ranges::find(wrappers, name) != wrappers.end();
}

std::string programOf(std::string_view command) {
  command = withoutBlanks(command);
  constexpr std::string_view modifiers = "-@:+!|";
  while (!command.empty() && modifiers.contains(command.front())) command.remove_prefix(1);
  auto word = takeQuotedWord(command);
  if (!isServiceWrapper(word)) return word;
  do {
    word = takeQuotedWord(command);
  } while (isServiceWrapper(word) || word.starts_with('-') || parseWhole(word) ||
           (word.contains('=') && word.find('=') < word.find('/')));
  return word;
}

void take(UnitFile& unit, std::string_view section, std::string_view key, std::string_view value) {
  if (section == "[Unit]" && key == "Description") unit.description = repairedUTF8(value);
  if (section == "[Service]" && key == "ExecStart") {
    if (value.empty()) {
      unit.program.clear();  // an empty value discards the earlier ones
    } else if (unit.program.empty()) {
      unit.program = repairedUTF8(programOf(value));
    }
  }
  if ((section == "[Timer]" || section == "[Path]") && key == "Unit") unit.triggered = repairedUTF8(value);
  if (section != "[Socket]") return;
  if (key == "Service") unit.triggered = repairedUTF8(value);
  constexpr std::array<std::string_view, 6> yes{"yes", "true", "on", "1", "y", "t"};
  if (key == "Accept") unit.acceptsConnections = std::ranges::find(yes, value) != yes.end();
}

}  // namespace

UnitFile parseUnitFile(std::string_view text) {
  UnitFile unit;
  std::string section, joined;
  if (text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);
  while (!text.empty()) {
    const auto line = withoutBlanks(takeLogicalLine(text, joined));
    if (line.empty() || isComment(line)) continue;
    if (line.starts_with('[')) {
      section = line;
      continue;
    }
    const auto equals = line.find('=');
    if (equals == std::string_view::npos) continue;
    take(unit, section, withoutBlanks(line.substr(0, equals)), withoutBlanks(line.substr(equals + 1)));
  }
  return unit;
}

std::optional<UnitName> splitUnitName(std::string_view name) {
  const auto dot = name.rfind('.');
  if (dot == std::string_view::npos || dot == 0 || dot + 1 == name.size()) return std::nullopt;
  UnitName parts{name.substr(0, dot), std::nullopt, name.substr(dot)};
  const auto at = parts.stem.find('@');
  if (at == 0) return std::nullopt;
  if (at == std::string_view::npos) return parts;
  parts.instance = parts.stem.substr(at + 1);
  parts.stem = parts.stem.substr(0, at);
  return parts;
}

}  // namespace vorli::formats
