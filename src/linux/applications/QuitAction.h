#pragma once

#include <string>

namespace vorli::linuxhost {

/// The place on the session bus at which an application exports its actions.
struct QuitAction {
  std::string busName;
  std::string objectPath;

  bool operator==(const QuitAction&) const = default;
};

}  // namespace vorli::linuxhost
