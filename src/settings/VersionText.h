#pragma once

#include "ports/ApplicationBundle.h"

#include <string>

namespace vorli {

/// The program's version for display, as in "v1.0 (build 100)"; "?" replaces a part that the bundle lacks.
std::string versionText(const ports::ApplicationBundle& bundle);

}  // namespace vorli
