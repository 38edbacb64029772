#include "formats/KernelRelease.h"

#include "formats/KernelText.h"

namespace vorli::formats {

std::optional<KernelRelease> parseKernelRelease(std::string_view text) {
  constexpr std::string_view digits = "0123456789";
  const auto point = text.find('.');
  if (point == std::string_view::npos) return std::nullopt;
  const auto behind = text.substr(point + 1);
  const auto major = parseWhole(text.substr(0, point));
  const auto minor = parseWhole(behind.substr(0, behind.find_first_not_of(digits)));
  if (!major || !minor) return std::nullopt;
  return KernelRelease{*major, *minor};
}

}  // namespace vorli::formats
