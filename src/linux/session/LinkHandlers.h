#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vorli::linuxhost {

/// Finds the program that the user has chosen for a type of file or link, in the lists that desktops share.
/// Reads the lists each time, because they are rarely needed.
class LinkHandlers {
 public:
  struct Places {
    std::vector<std::string> configFolders;  // the user's first
    std::vector<std::string> dataFolders;    // the user's first
    std::vector<std::string> desktops;       // names of the running desktop, in lower case

    static Places ofThisUser(const std::string& homeDirectory);
  };

  explicit LinkHandlers(Places places);

  /// Command line that opens the link or path in the program for its type ("x-scheme-handler/mailto",
  /// "inode/directory"). Empty when no installed program handles it; programs for a terminal are skipped.
  std::optional<std::vector<std::string>> commandFor(std::string_view type, const std::string& target) const;

  /// Starts the program for this type with the link or path. False when there is none or it does not start.
  bool open(std::string_view type, const std::string& target) const;

 private:
  std::vector<std::string> candidates(std::string_view type) const;
  std::optional<std::vector<std::string>> commandOf(const std::string& desktopID,
                                                    const std::string& target) const;

  const Places places_;
};

}  // namespace vorli::linuxhost
