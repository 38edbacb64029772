#pragma once

#include <string>
#include <string_view>

namespace vorli::ports {

/// Sort order of texts in the user's language.
class TextOrder {
 public:
  virtual ~TextOrder() = default;

  /// A key whose byte order is the sort order of the text, ignoring case. Thread-safe; does not block.
  virtual std::string sortKey(std::string_view text) const = 0;
};

}  // namespace vorli::ports
