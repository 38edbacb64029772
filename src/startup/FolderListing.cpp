#include "startup/FolderListing.h"

#include <algorithm>

namespace vorli {

const std::vector<std::string>& FolderListing::names() {
  static const std::vector<std::string> none;
  list();
  return names_ ? *names_ : none;
}

bool FolderListing::mayHave(std::string_view name) {
  list();
  return !names_ || std::ranges::binary_search(*names_, name);
}

bool FolderListing::has(const std::string& name) {
  if (!mayHave(name)) return false;
  if (names_) return true;
  const auto path = path_ + "/" + name;
  return files_->linkTarget(path).has_value() || files_->exists(path);
}

void FolderListing::list() {
  if (isListed_) return;
  isListed_ = true;
  names_ = files_->visibleNames(path_);
  if (!names_ && files_->isMissing(path_)) names_.emplace();
}

}  // namespace vorli
