#include "linux/DesktopEntry.h"

#include "base/UTF8.h"

#include <algorithm>
#include <map>

namespace vorli::linuxhost {

namespace {

std::string_view trimmed(std::string_view text) {
  const auto isBlank = [](char c) { return c == ' ' || c == '\t' || c == '\r'; };
  while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
  return text;
}

std::string_view takeLine(std::string_view& rest) {
  const auto end = rest.find('\n');
  const auto line = rest.substr(0, end);
  rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
  return line;
}

std::string unescaped(std::string_view value) {
  std::string text;
  for (std::size_t i = 0; i < value.size(); ++i) {
    if (value[i] != '\\' || i + 1 == value.size()) {
      text += value[i];
      continue;
    }
    switch (value[++i]) {
      case 's':
        text += ' ';
        break;
      case 'n':
        text += '\n';
        break;
      case 't':
        text += '\t';
        break;
      case 'r':
        text += '\r';
        break;
      case '\\':
        text += '\\';
        break;
      default:
        text += '\\', text += value[i];
    }
  }
  return text;
}

// The keys of the group "Desktop Entry"; the first of two equal keys counts.
std::expected<std::map<std::string, std::string_view, std::less<>>, std::string> readMainGroup(
    std::string_view text) {
  std::map<std::string, std::string_view, std::less<>> keys;
  bool inGroup = false, seen = false;
  while (!text.empty()) {
    const auto line = trimmed(takeLine(text));
    if (line.empty() || line.starts_with('#')) continue;
    if (line.starts_with('[')) {
      if (seen) break;
      inGroup = seen = line == "[Desktop Entry]";
      continue;
    }
    const auto equals = line.find('=');
    if (!inGroup || equals == std::string_view::npos) continue;
    keys.emplace(std::string(trimmed(line.substr(0, equals))), trimmed(line.substr(equals + 1)));
  }
  if (!seen) return std::unexpected("no group [Desktop Entry]");
  return keys;
}

bool isWrapper(std::string_view word) {
  const auto base = word.substr(word.rfind('/') + 1);
  return base == "env" || base == "nohup" || base == "setsid" || base == "exec";
}

bool isAssignment(std::string_view word) {
  const auto equals = word.find('=');
  return equals != std::string_view::npos && equals > 0 && word.find('/') > equals;
}

void setCommand(DesktopEntry& entry, std::vector<std::string> words) {
  auto first = words.begin();
  while (first != words.end() && isWrapper(*first)) {
    ++first;
    while (first != words.end() && (isAssignment(*first) || first->starts_with('-'))) {
      const bool takesValue = *first == "-u" || *first == "-C";
      ++first;
      if (takesValue && first != words.end()) ++first;
    }
  }
  if (first == words.end()) return;
  entry.program = std::move(*first);
  entry.arguments.assign(std::make_move_iterator(first + 1), std::make_move_iterator(words.end()));
}

}  // namespace

std::vector<std::string> localeKeys(std::string_view locale) {
  const auto at = locale.find('@');
  const std::string modifier(at == std::string_view::npos ? "" : locale.substr(at));
  locale = locale.substr(0, at);
  locale = locale.substr(0, locale.find('.'));
  if (locale.empty() || locale == "C" || locale == "POSIX") return {};
  const std::string language(locale.substr(0, locale.find('_')));

  std::vector<std::string> keys;
  const auto add = [&](std::string key) {
    if (std::find(keys.begin(), keys.end(), key) == keys.end()) keys.push_back(std::move(key));
  };
  add(std::string(locale) + modifier);
  add(std::string(locale));
  add(language + modifier);
  add(language);
  return keys;
}

std::vector<std::string> splitExec(std::string_view exec) {
  std::vector<std::string> words;
  std::string word;
  bool inWord = false, quoted = false;
  const auto finish = [&] {
    // A word that is a field code stands for files or URLs given at launch.
    if (inWord && !(word.size() == 2 && word[0] == '%' && word[1] != '%')) words.push_back(word);
    word.clear();
    inWord = false;
  };
  for (std::size_t i = 0; i < exec.size(); ++i) {
    const char c = exec[i];
    if (c == '\\' && i + 1 < exec.size()) {
      word += exec[++i];
      inWord = true;
    } else if (c == '"') {
      quoted = !quoted;
      inWord = true;
    } else if ((c == ' ' || c == '\t' || c == '\n') && !quoted) {
      finish();
    } else {
      if (c == '%' && i + 1 < exec.size() && exec[i + 1] == '%') ++i;
      word += c;
      inWord = true;
    }
  }
  if (quoted) return {};
  finish();
  return words;
}

std::expected<DesktopEntry, std::string> parseDesktopEntry(std::string_view text,
                                                           const std::vector<std::string>& locales) {
  const auto keys = readMainGroup(text);
  if (!keys) return std::unexpected(keys.error());
  const auto value = [&](std::string_view key) {
    const auto found = keys->find(key);
    return found == keys->end() ? std::string() : repairedUTF8(unescaped(found->second));
  };
  const auto flag = [&](std::string_view key) { return value(key) == "true"; };

  DesktopEntry entry;
  entry.hidden = flag("Hidden");
  if (entry.hidden) return entry;  // often nothing else stands in it
  if (value("Type") != "Application") return std::unexpected("not of type Application");
  entry.noDisplay = flag("NoDisplay");
  entry.terminal = flag("Terminal");
  entry.name = value("Name");
  for (const auto& locale : locales) {
    if (auto localised = value("Name[" + locale + "]"); !localised.empty()) {
      entry.name = std::move(localised);
      break;
    }
  }
  if (entry.name.empty()) return std::unexpected("no Name");
  entry.icon = value("Icon");
  entry.startupWMClass = value("StartupWMClass");
  entry.flatpakID = value("X-Flatpak");
  setCommand(entry, splitExec(value("Exec")));
  if (entry.program.empty()) entry.program = value("TryExec");
  if (entry.program.empty() && !flag("DBusActivatable")) return std::unexpected("no Exec");
  return entry;
}

}  // namespace vorli::linuxhost
