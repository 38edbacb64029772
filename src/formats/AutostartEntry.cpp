#include "formats/AutostartEntry.h"

#include "base/Blanks.h"
#include "base/ShellWord.h"
#include "base/UTF8.h"
#include "formats/DesktopEntry.h"
#include "formats/DesktopLine.h"
#include "formats/KernelText.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <utility>

namespace vorli::formats {

namespace {

bool isAutostartWrapper(std::string_view word) {
  const auto base = word.substr(word.rfind('/') + 1);
  return base == "env" || base == "nohup" || base == "setsid" || base == "exec" || base == "nice";
}

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";  // sessions skip it

// Removes the mark from the front of `text` and returns it; empty when there is none.
std::string_view takeByteOrderMark(std::string_view& text) {
  const auto mark = text.substr(0, text.starts_with(byteOrderMark) ? byteOrderMark.size() : 0);
  text.remove_prefix(mark.size());
  return mark;
}

// True for a wrapper's option, for a number that belongs to one, and for an assignment.
bool isOfWrapper(std::string_view word) {
  const bool isNumber = word.find_first_not_of("0123456789") == word.npos;
  return word.starts_with('-') || isNumber || word.find('=') < word.find('/');
}

// Finds the word after the wrapper's options, their values and its assignments.
template <typename Iterator>
Iterator behindWrapper(Iterator word, Iterator end) {
  while (word != end && isOfWrapper(*word)) {
    const bool takesValue = *word == "-u" || *word == "-C";
    ++word;
    if (takesValue && word != end) ++word;
  }
  return word;
}

bool isShell(std::string_view word) {
  const auto base = word.substr(word.rfind('/') + 1);
  return base == "sh" || base == "bash" || base == "dash";
}

// True for the option that is followed by a script, alone or with others: "-c", "-lc".
bool announcesScript(std::string_view word) {
  return word.starts_with('-') && !word.starts_with("--") && word.ends_with('c');
}

// Returns the command that a shell's script starts, if the script only waits before it, as in
// "sleep 5 && tea -q &". Empty for any other script.
std::vector<std::string> startedByScript(std::string_view script) {
  constexpr std::string_view special = "'\"\\`$|<>(){}*?[]~#!\n";
  script = withoutBlanks(script, shellBlanks);
  if (script.find_first_of(special) != script.npos) return {};
  if (script.ends_with('&')) script.remove_suffix(1);
  std::string separated;
  for (std::size_t i = 0; i < script.size(); ++i) {
    const bool isAnd = script.substr(i).starts_with("&&");
    if (isAnd) ++i;
    separated += isAnd || script[i] == ';' ? std::string_view(" ; ") : script.substr(i, 1);
  }
  if (separated.contains('&')) return {};

  std::vector<std::string> words;
  std::string_view rest = separated;
  for (auto word = takeWord(rest); !word.empty(); word = takeWord(rest)) {
    if (word != ";") {
      words.emplace_back(word);
    } else if (words.size() == 2 && words.front() == "sleep") {
      words.clear();
    } else {
      return {};
    }
  }
  const bool beginsWithAssignment = !words.empty() && words.front().contains('=');
  return beginsWithAssignment ? std::vector<std::string>() : words;
}

void takeCommand(AutostartEntry& entry, std::vector<std::string> words) {
  auto first = words.begin();
  while (first != words.end() && isAutostartWrapper(*first)) first = behindWrapper(first + 1, words.end());
  if (first == words.end() || first->empty()) return;
  const bool hasScript = words.end() - first > 2 && isShell(*first) && announcesScript(first[1]);
  auto started = hasScript ? startedByScript(first[2]) : std::vector<std::string>();
  if (!started.empty()) return takeCommand(entry, std::move(started));
  entry.program = std::move(*first);
  entry.arguments.assign(std::make_move_iterator(first + 1), std::make_move_iterator(words.end()));
}

void take(AutostartEntry& entry, const DesktopLine& line) {
  if (line.key == "OnlyShowIn") entry.onlyShowIn = desktopList(line.value);
  if (line.key == "NotShowIn") entry.notShowIn = desktopList(line.value);
  if (line.key == "TryExec") entry.tryExec = desktopText(line.value);
  if (line.key == "AutostartCondition" || line.key == "X-GNOME-Autostart-Phase" ||
      line.key == "X-KDE-autostart-phase" || line.key == "X-KDE-autostart-condition")
    entry.isPartOfDesktop = true;
  if (line.key == "Exec" && entry.program.empty()) takeCommand(entry, splitExec(desktopText(line.value)));
}

// The keys that switch an entry off; the last line of each counts. Every session reads `Hidden=true`. Session
// managers that were derived from an early one of GNOME also read a key of its, and numbers. systemd, which
// starts the entries under GNOME and KDE, knows numbers but not those keys, and Xfce knows neither.
struct Switches {
  bool isHidden = false, isHiddenByNumber = false;
  bool isDisabled = false, isDisabledInMATE = false;

  void take(const DesktopLine& line) {
    const bool isFalse = line.value == "false" || line.value == "0";
    if (line.key == hiddenKey) {
      isHidden = line.value == "true";
      isHiddenByNumber = line.value == "1";
    }
    if (line.key == gnomeKey) isDisabled = isFalse;
    if (line.key == mateKey) isDisabledInMATE = isFalse;
  }

  std::vector<std::string> offIn() const {
    std::vector<std::string> desktops;
    if (isHiddenByNumber) desktops = {"GNOME", "KDE", "LXQt"};
    if (isDisabled || isHiddenByNumber) desktops.insert(desktops.end(), {"Cinnamon", "X-Cinnamon", "MATE"});
    if (isDisabledInMATE) desktops.emplace_back("MATE");
    return desktops;
  }

  static bool areIn(const DesktopLine& line) {
    return line.key == hiddenKey || line.key == gnomeKey || line.key == mateKey;
  }

 private:
  static constexpr std::string_view hiddenKey = "Hidden", gnomeKey = "X-GNOME-Autostart-enabled",
                                    mateKey = "X-MATE-Autostart-enabled";
};

// Picks the name in the best match of the user's languages.
class NameInLanguage {
 public:
  explicit NameInLanguage(const std::vector<std::string>& locales) : locales_(locales) {}

  void take(const DesktopLine& line) {
    if (line.key == "Name") return consider(line.value, locales_.size());
    if (!line.key.starts_with("Name[") || !line.key.ends_with(']')) return;
    const auto locale = line.key.substr(5, line.key.size() - 6);
    const auto found = std::ranges::find(locales_, locale);
    if (found != locales_.end())
      consider(line.value, static_cast<std::size_t>(std::distance(locales_.begin(), found)));
  }
  std::string text() const { return repairedUTF8(desktopText(text_)); }

 private:
  void consider(std::string_view text, std::size_t rank) {
    if (text.empty() || rank >= rank_) return;
    text_ = text;
    rank_ = rank;
  }

  const std::vector<std::string>& locales_;
  std::string_view text_;
  std::size_t rank_ = std::string_view::npos;
};

bool anyIn(const std::vector<std::string>& names, const std::vector<std::string>& desktops) {
  return std::ranges::find_first_of(names, desktops) != names.end();
}

// Returns the text without the lines of the main group that `keep` rejects.
template <typename Keep>
std::string withLines(std::string_view text, Keep keep) {
  std::string result(takeByteOrderMark(text));
  bool inGroup = false;
  while (!text.empty()) {
    const auto start = text;
    const auto line = splitDesktopLine(takeLine(text));
    const auto whole = start.substr(0, start.size() - text.size());
    if (!line.group.empty()) {
      inGroup = line.group == desktopEntryGroup;
    } else if (inGroup && !keep(line)) {
      continue;
    }
    result += whole;
  }
  return result;
}

}  // namespace

bool AutostartEntry::belongsIn(const std::vector<std::string>& desktops) const {
  if (anyIn(notShowIn, desktops)) return false;
  return onlyShowIn.empty() || anyIn(onlyShowIn, desktops);
}

bool AutostartEntry::isOffIn(const std::vector<std::string>& desktops) const {
  return isOff || anyIn(offIn, desktops);
}

bool AutostartEntry::startsIn(const std::vector<std::string>& desktops) const {
  return !isOffIn(desktops) && !program.empty() && belongsIn(desktops);
}

AutostartEntry parseAutostartEntry(std::string_view text, const std::vector<std::string>& locales) {
  AutostartEntry entry;
  NameInLanguage name(locales);
  Switches switches;
  bool inGroup = false, seen = false;
  takeByteOrderMark(text);
  while (!text.empty()) {
    const auto line = splitDesktopLine(takeLine(text));
    if (!line.group.empty()) {
      inGroup = line.group == desktopEntryGroup;  // sessions add up all groups of this name
      seen = seen || inGroup;
    } else if (inGroup) {
      take(entry, line);
      name.take(line);
      switches.take(line);
    }
  }
  entry.name = name.text();
  entry.isOff = switches.isHidden || !seen;
  entry.offIn = switches.offIn();
  return entry;
}

std::string switchedOn(std::string_view text) {
  return withLines(text, [](const DesktopLine& line) { return !Switches::areIn(line); });
}

std::string quotedForExec(std::string_view word) {
  std::string quoted = "\"";
  for (const char c : word) {
    // Applies the rules of quoting first, then those of strings in an entry, which double each backslash.
    if (c == '\\') {
      quoted += "\\\\\\\\";
    } else if (c == '"' || c == '`' || c == '$') {
      quoted += "\\\\";
      quoted += c;
    } else if (c == '%') {
      quoted += "%%";
    } else {
      quoted += c;
    }
  }
  return quoted + '"';
}

std::string autostartEntryText(const std::string& program) {
  return std::string(desktopEntryGroup) +
         "\nType=Application\nName=Vorli\nComment=Shows how hard the memory is working\nExec=" +
         quotedForExec(program) +
         "\nIcon=com.kv.vorli\nTerminal=false\nStartupNotify=false\nX-GNOME-Autostart-enabled=true\n";
}

std::string switchedOff(std::string_view text) {
  std::string result(takeByteOrderMark(text));
  const auto front = result.size();
  bool seen = false;
  while (!text.empty()) {
    const auto line = takeLine(text);
    const auto parts = splitDesktopLine(line);
    if (parts.key == "Hidden") continue;
    result.append(line).append("\n");
    if (seen || parts.group != desktopEntryGroup) continue;
    result += "Hidden=true\n";
    seen = true;
  }
  if (!seen) result.insert(front, std::string(desktopEntryGroup) + "\nHidden=true\n");
  return result;
}

}  // namespace vorli::formats
