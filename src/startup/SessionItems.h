#pragma once

#include "startup/RawCandidate.h"

#include <string>
#include <string_view>

namespace vorli {

/// True for the program's own items.
bool isOwnItem(std::string_view identifier);

/// True for items of the desktop or the system that a session needs, such as its sound or its settings. A
/// program outside of the folders of packages belongs to a third party and is never one of them.
bool keepsSessionAlive(const RawCandidate& candidate, std::string_view home);

}  // namespace vorli
