#pragma once

#include <string>
#include <string_view>

namespace vorli {

/// The service manager that a unit belongs to.
enum class UnitManager { user, system };

/// Returns the identifier of a unit as a startup item: its name, with an ending for the system's manager.
/// Units of the same name in both managers are two items.
std::string unitIdentifier(std::string_view name, UnitManager manager);

/// Returns "mpd" for "mpd.service" and "mpd.service@system", and any other identifier unchanged.
std::string_view withoutUnitSuffix(std::string_view identifier);

}  // namespace vorli
