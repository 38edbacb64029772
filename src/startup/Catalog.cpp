#include "startup/Catalog.h"

#include "base/UnicodeText.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <vector>

namespace vorli {

namespace {

struct Guess {
  std::string_view word;
  std::string_view description;
};

// Descriptions by a word of the identifier; the first word that it contains counts.
constexpr Guess guesses[] = {
    {"autoupdate", "Checks for updates quietly in the background."},
    {"updater", "Checks for updates quietly in the background."},
    {".update", "Checks for updates quietly in the background."},
    {"sync", "Keeps files or settings in sync in the background."},
    {"launchatlogin", {}},  // text depends on the system
    {"notif", "Listens for new notifications in the background."},
    {"push", "Listens for new notifications in the background."},
};
constexpr std::string_view otherwise = "Runs quietly in the background.";

constexpr std::string_view opensWith(HostSystem system) {
  return system == HostSystem::macOS ? "Opens with your Mac so it's ready when you are."
                                     : "Starts with your computer so it's ready when you are.";
}

std::string_view guessedDescription(std::string_view identifier, HostSystem system) {
  const std::string lower = lowercased(identifier);
  for (const auto& guess : guesses) {
    if (lower.contains(guess.word)) return guess.description.empty() ? opensWith(system) : guess.description;
  }
  return otherwise;
}

// The rows by the first byte of their prefixes, each list in the rows' order: a look-up is made for each
// item.
class RowsByFirstByte {
 public:
  explicit RowsByFirstByte(std::span<const CatalogEntry> rows) {
    for (const auto& row : rows) lists_[byteOf(row.prefix)].push_back(&row);
  }

  const CatalogEntry* firstThatBegins(std::string_view text) const {
    if (text.empty()) return nullptr;
    const auto& list = lists_[byteOf(text)];
    const auto row =
        std::ranges::find_if(list, [text](auto* each) { return text.starts_with(each->prefix); });
    return row == list.end() ? nullptr : *row;
  }

 private:
  static std::size_t byteOf(std::string_view text) { return static_cast<unsigned char>(text.front()); }

  std::array<std::vector<const CatalogEntry*>, 256> lists_;
};

const CatalogEntry* rowOf(std::string_view bundleID, HostSystem system) {
  static const RowsByFirstByte ofMacOS(catalogOf(HostSystem::macOS));
  static const RowsByFirstByte ofLinux(catalogOf(HostSystem::linuxDesktop));
  return (system == HostSystem::macOS ? ofMacOS : ofLinux).firstThatBegins(bundleID);
}

}  // namespace

CatalogText lookupCatalog(const std::optional<std::string>& bundleID, std::string_view identifier,
                          const std::string& displayName, HostSystem system) {
  const auto* row = bundleID ? rowOf(*bundleID, system) : nullptr;
  if (row) return {std::string(row->displayName), std::string(row->description), row->requiresConfirmation};
  return {displayName, std::string(guessedDescription(identifier, system)), false};
}

}  // namespace vorli
