#pragma once

#include <string_view>

namespace vorli {

/// The identifier under which the program itself runs: it never judges itself.
inline constexpr std::string_view programIdentifier = "com.kv.vorli";

}  // namespace vorli
