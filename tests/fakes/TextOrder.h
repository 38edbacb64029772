#pragma once

#include "base/UnicodeText.h"
#include "ports/TextOrder.h"

namespace vorli::fakes {

/// Sorts by the code points of the lower-case letters.
class TextOrder final : public ports::TextOrder {
 public:
  std::string sortKey(std::string_view text) const override { return lowercased(text); }
};

}  // namespace vorli::fakes
