#pragma once

#include "ports/StartupFiles.h"

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vorli {

/// The visible names in a folder. Listed once, when they are first needed: most of the files for which a scan
/// looks lie in another folder.
class FolderListing {
 public:
  FolderListing(ports::StartupFiles& files, std::string path) : files_(&files), path_(std::move(path)) {}

  const std::string& path() const { return path_; }

  /// Sorted by their bytes. None when the folder does not exist or cannot be listed.
  const std::vector<std::string>& names();

  /// False when the folder has no such name; true also when it cannot be listed.
  bool mayHave(std::string_view name);

  /// True when the folder has the name, even if it is that of a link that leads nowhere.
  bool has(const std::string& name);

 private:
  void list();

  ports::StartupFiles* files_;
  std::string path_;
  bool isListed_ = false;
  std::optional<std::vector<std::string>> names_;  // empty where the folder cannot be listed
};

}  // namespace vorli
