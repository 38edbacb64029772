#pragma once

#include <expected>
#include <string>
#include <string_view>
#include <vector>

namespace vorli::linuxhost {

/// What one application's desktop entry says, as far as processes are matched with it. Texts are valid UTF-8;
/// one that the entry lacks is empty.
struct DesktopEntry {
  std::string id;    // file name without its suffix, folders joined by dashes
  std::string path;  // the file
  std::string name;  // in the user's language where the entry has it
  std::string icon;
  std::string program;                 // first word of Exec behind wrappers such as env; else TryExec
  std::vector<std::string> arguments;  // what follows it, field codes left out
  std::string startupWMClass;
  std::string flatpakID;
  bool noDisplay = false;
  bool hidden = false;
  bool terminal = false;

  /// A full application that a launcher would show.
  bool isVisible() const { return !noDisplay && !hidden && !terminal; }

  bool operator==(const DesktopEntry&) const = default;
};

/// The user's language in the entry's key notation, the most exact first: "de_AT@euro", "de_AT", "de@euro",
/// "de".
std::vector<std::string> localeKeys(std::string_view locale);

/// Reads an entry's text. Error: why it is none. `id` and `path` stay empty, and of a hidden entry everything
/// else too.
std::expected<DesktopEntry, std::string> parseDesktopEntry(std::string_view text,
                                                           const std::vector<std::string>& locales);

/// Splits an Exec value into words by its quoting rules, with field codes such as %U taken out. Empty when a
/// quote is left open.
std::vector<std::string> splitExec(std::string_view exec);

}  // namespace vorli::linuxhost
