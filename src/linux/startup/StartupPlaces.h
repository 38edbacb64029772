#pragma once

#include "ports/StartupPlaces.h"

#include <string>

namespace vorli::linuxhost {

/// Returns the places of this user's session, from the environment. `home` is the user's home folder.
ports::StartupPlaces startupPlacesOfThisUser(const std::string& home);

}  // namespace vorli::linuxhost
