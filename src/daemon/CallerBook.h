#pragma once

#include "daemon/Request.h"

#include <cstddef>
#include <map>
#include <optional>
#include <string>

namespace vorli::daemon {

/// Whose the names on the bus are. A bus gives each name to one connection only, and a connection keeps its
/// user, so what was once told stays true.
class CallerBook {
 public:
  static constexpr std::size_t mostNames = 256;

  std::optional<UserId> userOf(const std::string& caller) const {
    const auto entry = users_.find(caller);
    return entry == users_.end() ? std::nullopt : std::optional(entry->second);
  }

  /// A full book is begun anew: whoever still calls is asked for once more.
  void note(const std::string& caller, UserId user) {
    if (users_.size() >= mostNames) users_.clear();
    users_.insert_or_assign(caller, user);
  }

 private:
  std::map<std::string, UserId> users_;
};

}  // namespace vorli::daemon
