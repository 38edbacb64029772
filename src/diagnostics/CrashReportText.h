#pragma once

#include "base/Date.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vorli {

// Readers of a crash report. They accept any text; views in results point into it.

/// Returns the first line below the heading that is neither blank nor a rule of dashes, or the rest of the
/// first line that begins with "HEADING:". Trimmed. Empty when there is neither.
std::optional<std::string_view> sectionValue(std::string_view report, std::string_view heading);

/// Returns the lines of the stack trace unchanged, including the empty line after them.
std::vector<std::string_view> stackFrames(std::string_view report);

/// Returns 16 hexadecimal digits, which are equal for reports whose first three frames are equal.
std::string crashSignature(std::string_view report);

/// Returns the moment in the name of a report's file. Empty when the name is not a timestamp.
std::optional<Date> dateFromFileName(std::string_view fileName);

}  // namespace vorli
