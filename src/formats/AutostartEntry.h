#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vorli::formats {

/// The parts of a file in an autostart folder that decide whether a session starts its program, and those
/// that describe the program. Texts are as in the file, and empty when they are missing.
struct AutostartEntry {
  std::string name;                    // in the user's language where the entry has it
  std::string program;                 // first word of Exec behind wrappers such as env and sh -c
  std::vector<std::string> arguments;  // what follows it
  std::string tryExec;                 // program without which nothing is started
  bool isOff = false;                  // hidden, or not an entry at all
  /// Desktops that skip the entry because of a switch that only they read.
  std::vector<std::string> offIn;
  /// True for a part of the desktop, which the desktop starts at a time or on a condition of its own.
  bool isPartOfDesktop = false;
  std::vector<std::string> onlyShowIn;
  std::vector<std::string> notShowIn;

  /// `desktops` are the names in XDG_CURRENT_DESKTOP.
  bool belongsIn(const std::vector<std::string>& desktops) const;
  bool isOffIn(const std::vector<std::string>& desktops) const;
  bool startsIn(const std::vector<std::string>& desktops) const;
};

/// Never fails: a text that is not a desktop entry yields an entry that starts nothing. `locales` are keys of
/// the user's language, the most exact first.
AutostartEntry parseAutostartEntry(std::string_view text, const std::vector<std::string>& locales = {});

/// The text of an entry that starts `program`, which is an absolute path.
std::string autostartEntryText(const std::string& program);

/// Returns the entry switched off in a way that every kind of session honours. Nothing else is changed.
std::string switchedOff(std::string_view text);

/// Returns the entry without the lines that switch it off. Nothing else is changed.
std::string switchedOn(std::string_view text);

/// Quotes a text as one word of an Exec line.
std::string quotedForExec(std::string_view word);

}  // namespace vorli::formats
