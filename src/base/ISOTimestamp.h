#pragma once

#include "base/Date.h"

#include <array>
#include <optional>
#include <string_view>

namespace vorli {

/// A moment in UTC with milliseconds, as in "2026-03-01T09:30:05.123Z". Formatting one allocates nothing and
/// takes no lock, so a signal handler may do it.
class ISOTimestamp {
 public:
  /// Moments outside the years 0 to 9999 are clamped to that range.
  explicit ISOTimestamp(Date date) noexcept;

  std::string_view text() const { return {characters_.data(), characters_.size()}; }

 private:
  std::array<char, 24> characters_;
};

/// Parses a text in this form; the zone may also be an offset such as "+02:00". Empty for any other text.
std::optional<Date> parseISOTimestamp(std::string_view text);

}  // namespace vorli
