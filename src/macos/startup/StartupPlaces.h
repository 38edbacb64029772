#pragma once

#include "ports/StartupPlaces.h"

#include <string>

namespace vorli::machost {

/// Returns only the home folder: the core knows the launch folders, which are the same for every user.
inline ports::StartupPlaces startupPlacesOfThisUser(const std::string& home) {
  ports::StartupPlaces places;
  places.home = home;
  return places;
}

}  // namespace vorli::machost
