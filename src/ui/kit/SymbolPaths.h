#pragma once

#include <string_view>

namespace vorli::ui {

/// The drawings of all symbols, on a grid of 24 by 24. A line without indentation names a symbol; a line
/// indented by two begins one of its paths, and deeper lines continue it. A path is "stroke WIDTH" or
/// "fill nonzero|evenodd", followed by absolute commands M, L, C and Z.
extern const std::string_view symbolPaths;

}  // namespace vorli::ui
