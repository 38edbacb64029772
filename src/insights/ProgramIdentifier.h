#pragma once

#include <string_view>

namespace vorli {

/// The program's own identifier, used to exclude itself from its insights.
inline constexpr std::string_view programIdentifier = "com.kv.vorli";

}  // namespace vorli
