#pragma once

#include "ports/Announcements.h"

namespace vorli::machost {

/// Announcements on behalf of the whole program.
class Announcements final : public ports::Announcements {
 public:
  void post(std::string_view text) override;
};

}  // namespace vorli::machost
