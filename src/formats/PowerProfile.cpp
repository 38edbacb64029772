#include "formats/PowerProfile.h"

#include "base/Blanks.h"
#include "formats/KernelText.h"

namespace vorli::formats {

std::string_view parsePowerProfile(std::string_view state) {
  constexpr std::string_view key = "Profile";
  while (!state.empty()) {
    const auto line = takeLine(state);
    const auto equals = line.find('=');
    if (equals == std::string_view::npos || withoutBlanks(line.substr(0, equals)) != key) continue;
    return withoutBlanks(line.substr(equals + 1));
  }
  return {};
}

}  // namespace vorli::formats
