#pragma once

#include <compare>
#include <cstdint>
#include <optional>
#include <string_view>

namespace vorli::formats {

/// The first two numbers of a kernel's release: 6 and 1 for "6.1.0-18-amd64".
struct KernelRelease {
  std::uint64_t major = 0;
  std::uint64_t minor = 0;

  auto operator<=>(const KernelRelease&) const = default;
};

std::optional<KernelRelease> parseKernelRelease(std::string_view text);

}  // namespace vorli::formats
