#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vorli {

/// Splits a combination into its key caps: one text for each piece between plus signs, in the same order.
std::vector<std::string> hotkeyPills(std::string_view combo);

}  // namespace vorli
