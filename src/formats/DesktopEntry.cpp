#include "formats/DesktopEntry.h"

#include "base/ShellWord.h"
#include "base/UTF8.h"
#include "formats/DesktopLine.h"
#include "formats/KernelText.h"

#include <algorithm>
#include <map>

namespace vorli::formats {

namespace {

// The keys of the group "Desktop Entry"; the first of two equal keys counts.
std::expected<std::map<std::string, std::string_view, std::less<>>, std::string> readMainGroup(
    std::string_view text) {
  std::map<std::string, std::string_view, std::less<>> keys;
  bool inGroup = false, seen = false;
  while (!text.empty()) {
    const auto line = splitDesktopLine(takeLine(text));
    if (!line.group.empty()) {
      if (seen) break;
      inGroup = seen = line.group == desktopEntryGroup;
    } else if (inGroup && !line.key.empty()) {
      keys.emplace(std::string(line.key), line.value);
    }
  }
  if (!seen) return std::unexpected("no group [Desktop Entry]");
  return keys;
}

bool isLaunchWrapper(std::string_view word) {
  const auto base = word.substr(word.rfind('/') + 1);
  return base == "env" || base == "nohup" || base == "setsid" || base == "exec";
}

void setCommand(DesktopEntry& entry, std::vector<std::string> words) {
  auto first = words.begin();
  while (first != words.end() && isLaunchWrapper(*first)) {
    ++first;
    while (first != words.end() && (isAssignment(*first) || first->starts_with('-'))) {
      const bool takesValue = *first == "-u" || *first == "-C";
      ++first;
      if (takesValue && first != words.end()) ++first;
    }
  }
  if (first == words.end() || first->empty()) return;
  entry.program = std::move(*first);
  entry.arguments.assign(std::make_move_iterator(first + 1), std::make_move_iterator(words.end()));
}

}  // namespace

bool DesktopEntry::isFor(const std::vector<std::string>& desktops) const {
  const auto names = [&desktops](const std::vector<std::string>& list) {
    return std::find_first_of(list.begin(), list.end(), desktops.begin(), desktops.end()) != list.end();
  };
  return (onlyShowIn.empty() || names(onlyShowIn)) && !names(notShowIn);
}

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
  return splitExec(exec, [](char, std::vector<std::string>&) {});
}

std::vector<std::string> splitExec(std::string_view exec, const AddField& addField) {
  std::vector<std::string> words;
  std::string word;
  bool inWord = false, quoted = false;
  const auto finish = [&] {
    const bool isField = word.size() == 2 && word[0] == '%' && word[1] != '%';
    if (isField) addField(word[1], words);
    if (inWord && !isField) words.push_back(word);
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
  const auto raw = [&](std::string_view key) {
    const auto found = keys->find(key);
    return found == keys->end() ? std::string_view() : found->second;
  };
  const auto value = [&](std::string_view key) { return repairedUTF8(desktopText(raw(key))); };
  const auto flag = [&](std::string_view key) { return value(key) == "true"; };

  DesktopEntry entry;
  entry.hidden = flag("Hidden");
  if (entry.hidden) return entry;  // it often contains nothing else
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
  entry.tryExec = value("TryExec");
  entry.onlyShowIn = desktopList(raw("OnlyShowIn"));
  entry.notShowIn = desktopList(raw("NotShowIn"));
  if (entry.program.empty()) entry.program = entry.tryExec;
  if (entry.program.empty() && !flag("DBusActivatable")) return std::unexpected("no Exec");
  return entry;
}

}  // namespace vorli::formats
