#include "formats/Crontab.h"

#include "base/Blanks.h"
#include "base/ShellWord.h"
#include "base/UTF8.h"
#include "formats/KernelText.h"

#include <algorithm>
#include <array>

namespace vorli::formats {

namespace {

// An unescaped percent sign begins the command's input.
std::string_view withoutInput(std::string_view command) {
  for (std::size_t i = 0; i < command.size(); ++i) {
    if (command[i] == '%' && (i == 0 || command[i - 1] != '\\')) return command.substr(0, i);
  }
  return command;
}

std::string takeShellWord(std::string_view& rest) {
  constexpr std::string_view ends = " \t;&|()<>";
  rest = withoutBlanks(rest, shellBlanks);
  std::string word;
  char quote = 0;
  std::size_t i = 0;
  for (; i < rest.size(); ++i) {
    const char c = rest[i];
    if (quote == 0 && ends.contains(c)) break;
    if (c == quote) {
      quote = 0;
    } else if (quote == 0 && (c == '"' || c == '\'')) {
      quote = c;
    } else {
      if (c == '\\' && quote != '\'' && i + 1 < rest.size()) ++i;
      word += rest[i];
    }
  }
  rest.remove_prefix(i);
  return word;
}

// Skips to the end of the next command separator.
void skipCommand(std::string_view& rest) {
  rest.remove_prefix(std::min(rest.find_first_of(";&|"), rest.size()));
  rest.remove_prefix(std::min(rest.find_first_not_of(";&| \t"), rest.size()));
}

}  // namespace

std::vector<std::string> parseRebootCommands(std::string_view crontab) {
  constexpr std::string_view keyword = "@reboot";
  std::vector<std::string> commands;
  while (!crontab.empty()) {
    auto line = withoutBlanks(takeLine(crontab), shellBlanks);
    if (takeWord(line) != keyword) continue;
    const auto command = withoutBlanks(withoutInput(line), shellBlanks);
    if (!command.empty()) commands.push_back(repairedUTF8(command));
  }
  return commands;
}

std::string programOfCommand(std::string_view command) {
  constexpr std::array<std::string_view, 4> preparing{"sleep", "cd", "export", "umask"};
  constexpr std::array<std::string_view, 6> wrappers{"env", "nice", "ionice", "nohup", "setsid", "exec"};
  while (!command.empty()) {
    auto word = takeShellWord(command);
    if (std::ranges::find(preparing, word) != preparing.end()) {
      skipCommand(command);
    } else if (word.empty()) {
      command.remove_prefix(std::min<std::size_t>(1, command.size()));  // a bracket or a separator
    } else if (!isAssignment(word) && !word.starts_with('-') && !parseWhole(word) &&
               std::ranges::find(wrappers, word) == wrappers.end()) {
      return word;
    }
  }
  return {};
}

}  // namespace vorli::formats
