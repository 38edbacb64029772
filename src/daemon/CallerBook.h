#pragma once

#include "daemon/Request.h"

#include <cstddef>
#include <deque>
#include <map>
#include <optional>
#include <string>

namespace vorli::daemon {

/// Remembers which user owns each bus name. A bus gives each name to one connection only, and a connection
/// keeps its user, so an entry stays valid.
class CallerBook {
 public:
  static constexpr std::size_t mostNames = 256;

  std::optional<UserId> userOf(const std::string& caller) const {
    const auto entry = users_.find(caller);
    return entry == users_.end() ? std::nullopt : std::optional(entry->second);
  }

  /// Adds a name. A full book drops its oldest name, whose caller must then be looked up again.
  void note(const std::string& caller, UserId user) {
    if (!users_.insert_or_assign(caller, user).second) return;
    names_.push_back(caller);
    if (names_.size() <= mostNames) return;
    users_.erase(names_.front());
    names_.pop_front();
  }

 private:
  std::map<std::string, UserId> users_;
  /// Names in the order in which they were added.
  std::deque<std::string> names_;
};

}  // namespace vorli::daemon
