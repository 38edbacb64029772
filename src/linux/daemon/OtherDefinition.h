#pragma once

#include "contract/SystemStartupFolders.h"

#include <optional>
#include <string>
#include <string_view>

namespace vorli::linuxhost {

/// Path of the definition that the system would use if the item `name` of `folder` did not exist: a unit of
/// the same name in another folder of the service manager, the template of an instance, the init script of a
/// service, or an entry of the same name in another autostart folder. Empty when there is none.
std::optional<std::string> otherDefinitionOf(const helper::SystemStartupFolder& folder,
                                             std::string_view name);

}  // namespace vorli::linuxhost
