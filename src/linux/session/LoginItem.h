#pragma once

#include "ports/LoginItem.h"

#include <filesystem>
#include <string>
#include <vector>

namespace vorli::linuxhost {

/// Folders where a session looks for programs to start.
struct AutostartPlaces {
  std::filesystem::path user;                  // overrides the others, file by file
  std::vector<std::filesystem::path> systems;  // the most important first
  std::vector<std::string> desktops;           // names of the running desktop

  /// Reads XDG_CONFIG_HOME, XDG_CONFIG_DIRS and XDG_CURRENT_DESKTOP.
  static AutostartPlaces ofThisSession(const std::string& homeDirectory);
};

/// The program's entry in the user's autostart folder. Any other entry that starts this program counts as
/// well, so that it is never started twice.
class LoginItem final : public ports::LoginItem {
 public:
  /// `program` is the absolute path of the running program.
  LoginItem(AutostartPlaces places, std::filesystem::path program)
      : places_(std::move(places)), program_(std::move(program)) {}

  /// Also returns "not registered" after the user hid or masked the entry, and after the program was moved.
  int status() override;
  [[nodiscard]] std::expected<void, std::string> registerItem() override;
  /// Switches off every entry that starts the program: its own entry is removed, other entries of the user
  /// are hidden, and entries of the system are hidden for this user.
  [[nodiscard]] std::expected<void, std::string> unregisterItem() override;

 private:
  std::vector<std::string> activeEntries() const;
  std::filesystem::path effectiveFile(const std::string& name) const;
  bool isInSystem(const std::string& name) const;
  bool startsThisProgram(const std::filesystem::path& file) const;
  [[nodiscard]] std::expected<void, std::string> switchOff(const std::string& name) const;

  const AutostartPlaces places_;
  const std::filesystem::path program_;
};

}  // namespace vorli::linuxhost
