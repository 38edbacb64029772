#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace vorli::formats {

/// The values of a systemd unit file that describe what it starts. Texts are valid UTF-8 and keep their
/// specifiers, such as %h.
struct UnitFile {
  std::string description;
  /// First word of the first ExecStart, without the characters that change how it is run and without wrappers
  /// such as env. Empty when the unit starts no program.
  std::string program;
  /// Unit that a timer, a path or a socket starts, if the file names one; usually it is the unit of the same
  /// name.
  std::string triggered;
  /// True for a socket that starts one service for each connection.
  bool acceptsConnections = false;

  bool operator==(const UnitFile&) const = default;
};

/// Never fails: lines that are not understood are ignored.
UnitFile parseUnitFile(std::string_view text);

/// The parts of a unit's name: "backup@home.timer" has the stem "backup", the instance "home" and the suffix
/// ".timer". A template, "backup@.timer", has an empty instance; a plain unit has none.
struct UnitName {
  std::string_view stem;
  std::optional<std::string_view> instance;
  std::string_view suffix;

  bool isInstance() const { return instance && !instance->empty(); }
  /// Returns the name of the template of an instance.
  std::string templateName() const { return std::string(stem) + "@" + std::string(suffix); }
};

/// Views into `name`. Empty when it has no suffix, or nothing in front of it.
std::optional<UnitName> splitUnitName(std::string_view name);

}  // namespace vorli::formats
