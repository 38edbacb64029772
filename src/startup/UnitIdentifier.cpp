#include "startup/UnitIdentifier.h"

#include "contract/SystemStartupFolders.h"

namespace vorli {

namespace {

// Marks units of the system's manager. No unit's name ends like this: it ends in the unit's type.
constexpr std::string_view systemSuffix = "@system";

}  // namespace

std::string unitIdentifier(std::string_view name, UnitManager manager) {
  std::string identifier(name);
  if (manager == UnitManager::system) identifier += systemSuffix;
  return identifier;
}

std::string_view withoutUnitSuffix(std::string_view identifier) {
  auto name = identifier;
  if (name.ends_with(systemSuffix)) name.remove_suffix(systemSuffix.size());
  for (const auto suffix : helper::unitSuffixes)
    if (name.ends_with(suffix)) return name.substr(0, name.size() - suffix.size());
  return identifier;
}

}  // namespace vorli
