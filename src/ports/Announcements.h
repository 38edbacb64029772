#pragma once

#include <string_view>

namespace vorli::ports {

/// Spoken announcements for users of a screen reader.
class Announcements {
 public:
  virtual ~Announcements() = default;

  /// Speaks the text after the current utterance; does nothing without a screen reader. Main thread; does not
  /// block.
  virtual void post(std::string_view text) = 0;
};

}  // namespace vorli::ports
