#include "startup/AutostartOverride.h"

#include "base/FilePath.h"
#include "formats/PauseMarks.h"

namespace vorli {

namespace {

constexpr std::string_view overrideKey = "X-Vorli-Override=";

}  // namespace

std::string overrideText(std::string_view fileName, AutostartOverride kind) {
  std::string text(formats::pause_marks::group);
  text += "\n";
  text += formats::pause_marks::block;
  text += overrideKey;
  text += kind == AutostartOverride::paused ? "paused" : "removed";
  text += "\nType=Application\nName=";
  text += fileStem(fileName);
  return text += "\n";
}

std::optional<AutostartOverride> overrideKind(std::string_view fileName, std::string_view text) {
  if (!text.contains(overrideKey)) return std::nullopt;
  for (const auto kind : {AutostartOverride::paused, AutostartOverride::removed})
    if (text == overrideText(fileName, kind)) return kind;
  return std::nullopt;
}

}  // namespace vorli
