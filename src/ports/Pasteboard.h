#pragma once

#include <string>

namespace vorli::ports {

/// The clipboard. Copied text can be pasted while the program runs. Main thread; does not block.
class Pasteboard {
 public:
  virtual ~Pasteboard() = default;

  /// Replaces the whole content with plain text.
  virtual void setString(const std::string& text) = 0;
};

}  // namespace vorli::ports
