#pragma once

#include <expected>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace vorli::formats {

/// The values of an application's desktop entry that are used to match processes. Texts are valid UTF-8;
/// missing ones are empty.
struct DesktopEntry {
  std::string id;    // file name without its suffix, folders joined by dashes
  std::string path;  // the file
  std::string name;  // in the user's language where the entry has it
  std::string icon;
  std::string program;                 // first word of Exec behind wrappers such as env; else TryExec
  std::vector<std::string> arguments;  // the words after it, without field codes
  std::string tryExec;                 // program without which the entry is of no use
  std::string startupWMClass;
  std::string flatpakID;
  std::vector<std::string> onlyShowIn, notShowIn;  // names of desktops
  bool noDisplay = false;
  bool hidden = false;
  bool terminal = false;

  /// True for an application that a launcher would show.
  bool isVisible() const { return !noDisplay && !hidden && !terminal; }

  /// True when the entry is meant for a desktop with any of these names.
  bool isFor(const std::vector<std::string>& desktops) const;

  bool operator==(const DesktopEntry&) const = default;
};

/// The user's language in the entry's key notation, the most exact first: "de_AT@euro", "de_AT", "de@euro",
/// "de".
std::vector<std::string> localeKeys(std::string_view locale);

/// Parses an entry. Error: why the text is not an entry. `id` and `path` stay empty; so do all other fields
/// of a hidden entry.
[[nodiscard]] std::expected<DesktopEntry, std::string> parseDesktopEntry(
    std::string_view text, const std::vector<std::string>& locales);

/// Splits an Exec value into words by its quoting rules, with field codes such as %U taken out. Empty when a
/// quote is left open.
std::vector<std::string> splitExec(std::string_view exec);

/// Adds the words that a field code stands for; the code comes without its percent sign.
using AddField = std::function<void(char code, std::vector<std::string>& words)>;

/// Splits in the same way, with each word that is a field code replaced by what `addField` adds.
std::vector<std::string> splitExec(std::string_view exec, const AddField& addField);

}  // namespace vorli::formats
