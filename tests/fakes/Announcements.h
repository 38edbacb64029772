#pragma once

#include "ports/Announcements.h"

#include <string>
#include <vector>

namespace vorli::fakes {

/// Records all announcements.
class Announcements final : public ports::Announcements {
 public:
  void post(std::string_view text) override { said.emplace_back(text); }

  std::vector<std::string> said;
};

}  // namespace vorli::fakes
