#pragma once

#include "ports/Pasteboard.h"

#include <optional>

namespace vorli::fakes {

/// A clipboard that a test can look at.
class Pasteboard final : public ports::Pasteboard {
 public:
  void setString(const std::string& text) override { string = text; }

  std::optional<std::string> string;
};

}  // namespace vorli::fakes
