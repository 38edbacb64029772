#include "formats/DesktopGroup.h"

#include "formats/DesktopLine.h"
#include "formats/KernelText.h"

namespace vorli::formats {

std::optional<std::string_view> valueInGroup(std::string_view text, std::string_view header,
                                             std::string_view key) {
  bool inGroup = false;
  while (!text.empty()) {
    const auto line = splitDesktopLine(takeLine(text));
    if (!line.group.empty()) {
      inGroup = line.group == header;
    } else if (inGroup && !line.key.empty() && line.key == key) {
      return line.value;
    }
  }
  return std::nullopt;
}

}  // namespace vorli::formats
