#pragma once

#include "base/HostSystem.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace vorli {

/// One well-known application. The first row whose prefix matches counts, so narrow prefixes come before wide
/// ones.
struct CatalogEntry {
  std::string_view prefix;  // of a bundle identifier; compared byte by byte, without a word boundary
  std::string_view displayName;
  std::string_view description;
  /// True if stopping it breaks something that the user relies on: synchronised files, passwords, a VPN,
  /// backups.
  bool requiresConfirmation = false;
};

/// Texts of the list about one item.
struct CatalogText {
  std::string displayName;
  std::string description;
  bool requiresConfirmation = false;

  bool operator==(const CatalogText&) const = default;
};

/// All rows, in their order, with the texts of one system.
std::span<const CatalogEntry> catalogOf(HostSystem system);

/// Returns the row of the application `bundleID`; without one, the given name and a description guessed from
/// the item's own identifier.
CatalogText lookupCatalog(const std::optional<std::string>& bundleID, std::string_view identifier,
                          const std::string& displayName, HostSystem system = hostSystem);

}  // namespace vorli
