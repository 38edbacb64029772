#pragma once

#include "ports/ApplicationBundle.h"

#include <string>

namespace vorli {

/// The program's version for people, as in "v1.0 (build 100)"; "?" stands for what the bundle does not tell.
std::string versionText(const ports::ApplicationBundle& bundle);

}  // namespace vorli
