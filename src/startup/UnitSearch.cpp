#include "startup/UnitSearch.h"

#include "base/FilePath.h"
#include "contract/SystemStartupFolders.h"

#include <algorithm>
#include <utility>

namespace vorli {

namespace {

constexpr std::size_t largestUnit = std::size_t{1024} * 1024;
constexpr int longestChainOfAliases = 4;
constexpr const char* nowhere = "/dev/null";

bool isUnit(std::string_view name) {
  return std::ranges::any_of(helper::unitSuffixes, [&](auto suffix) {
    return name.size() > suffix.size() && name.ends_with(suffix);
  });
}

bool isWishList(std::string_view name) {
  return name.ends_with(".wants") || name.ends_with(".requires");
}

// True for folders in which people enable units. Links of packages are the system's own wiring, and links
// made at run time are gone at the next start: nobody switches either on or off.
bool isConfigured(const UnitFolder& folder) {
  return folder.owner == UnitFolder::Owner::user || folder.owner == UnitFolder::Owner::administrator;
}

// The unit to which a link with the name of another unit leads. Empty for a link that only leads to the
// unit's own file elsewhere.
std::optional<std::string> alias(const std::optional<std::string>& target, const std::string& name) {
  if (!target) return std::nullopt;
  std::string other(lastPathComponent(*target));
  if (other == name || !isUnit(other)) return std::nullopt;
  const auto parts = formats::splitUnitName(name);
  if (parts && parts->isInstance() && parts->templateName() == other) return std::nullopt;
  return other;
}

std::vector<std::string> namesIn(ports::StartupFiles& files, const std::string& folder) {
  return files.visibleNames(folder).value_or(std::vector<std::string>());
}

}  // namespace

UnitSearch::UnitSearch(ports::StartupFiles& files, std::vector<UnitFolder> folders, std::string initScripts)
    : files_(files), folders_(std::move(folders)), initScripts_(files, std::move(initScripts)) {
  listAgain();
}

std::set<std::string> UnitSearch::startedNames() {
  listAgain();
  std::set<std::string> names;
  for (const auto& folder : folders_) {
    if (!isConfigured(folder)) continue;
    for (const std::string_view name : listing(folder).names()) {
      if (isWishList(name)) {
        for (auto& wanted : namesIn(files_, folder.path + "/" + std::string(name)))
          if (isUnit(wanted)) names.insert(std::move(wanted));
      } else if (name.ends_with(helper::disabledExtension)) {
        const auto unit = name.substr(0, name.size() - helper::disabledExtension.size());
        if (isUnit(unit)) names.emplace(unit);
      }
    }
  }
  return names;
}

std::optional<FoundUnit> UnitSearch::find(const std::string& name) {
  std::string wanted = name;
  auto holder = holderOf(wanted);
  for (int step = 0; step < longestChainOfAliases; ++step) {
    const auto other = alias(holder.target, wanted);
    if (!other) break;
    wanted = *other;
    holder = holderOf(wanted);
  }
  if (auto unit = findFile(wanted, holder)) return unit;
  const auto parts = formats::splitUnitName(wanted);
  if (!parts || !parts->isInstance()) return std::nullopt;
  const auto general = parts->templateName();
  auto unit = findFile(general, holderOf(general));
  if (!unit) return std::nullopt;
  unit->name = wanted;
  unit->isInstance = true;
  const auto masks = [&](const auto& folder) {
    return folder.owner != UnitFolder::Owner::runtime && isMask(folder, wanted);
  };
  if (std::ranges::any_of(folders_, masks)) unit->isEnabled = false;
  return unit;
}

// A mask hides files in later folders, but they describe the masked unit. A mask that ends with the next
// start hides nothing. A file that this program renamed counts only if no other file of that name is loaded
// instead.
std::optional<FoundUnit> UnitSearch::findFile(const std::string& name, const Holder& holder) {
  std::optional<FoundUnit> unit, paused;
  const auto pausedName = name + std::string(helper::disabledExtension);
  bool isMasked = false;
  for (const auto& folder : folders_) {
    const bool isHere = listing(folder).mayHave(name);
    const auto path = isHere ? folder.path + "/" + name : std::string();
    const auto target = [&] { return &folder == holder.folder ? holder.target : files_.linkTarget(path); };
    auto text = isHere ? files_.read(path, largestUnit) : std::nullopt;
    if (isHere && (text ? text->empty() : target() == nowhere)) {
      isMasked = isMasked || folder.owner != UnitFolder::Owner::runtime;
      text = std::nullopt;
    }
    if (text) {
      unit = FoundUnit{.name = name, .folder = &folder, .text = std::move(*text)};
      unit->isLink = target().has_value();
      unit->hasEarlierFile = listing(folder).has(pausedName) ||
                             listing(folder).has(name + std::string(helper::removedExtension));
      break;
    }
    if (paused || !isConfigured(folder) || !listing(folder).mayHave(pausedName)) continue;
    text = files_.read(folder.path + "/" + pausedName, largestUnit);
    if (text)
      paused = FoundUnit{.name = name, .folder = &folder, .text = std::move(*text), .isEnabled = false};
  }
  if (paused && (!unit || isMasked)) return paused;
  if (!unit) return std::nullopt;
  if (isMasked) unit->isEnabled = false;
  unit->overridesAnother = hasOtherOrigin(name, *unit->folder);
  return unit;
}

UnitSearch::Holder UnitSearch::holderOf(const std::string& name) {
  const auto folder =
      std::ranges::find_if(folders_, [&](const auto& each) { return listing(each).has(name); });
  if (folder == folders_.end()) return {};
  return {&*folder, files_.linkTarget(folder->path + "/" + name)};
}

// True when a folder after `folder` has the name, even if it is that of a mask, and when the manager can make
// the unit from a template or an init script. The name of a script may end in ".sh", which the name of its
// service lacks.
bool UnitSearch::hasOtherOrigin(const std::string& name, const UnitFolder& folder) {
  const auto isBehind = [&](const auto& each) { return &each > &folder && listing(each).has(name); };
  if (std::ranges::any_of(folders_, isBehind)) return true;
  const auto parts = formats::splitUnitName(name);
  if (parts && parts->isInstance()) {
    const auto general = parts->templateName();
    if (std::ranges::any_of(listings_, [&](auto& each) { return each.has(general); })) return true;
  }
  const bool isService = parts && parts->suffix == ".service";
  if (initScripts_.path().empty() || !isService) return false;
  const auto script = name.substr(0, name.size() - parts->suffix.size());
  return initScripts_.has(script) || initScripts_.has(script + ".sh");
}

FolderListing& UnitSearch::listing(const UnitFolder& folder) {
  return listings_[static_cast<std::size_t>(&folder - folders_.data())];
}

void UnitSearch::listAgain() {
  initScripts_ = FolderListing(files_, initScripts_.path());
  listings_.clear();
  for (const auto& folder : folders_) listings_.emplace_back(files_, folder.path);
}

bool UnitSearch::isMask(const UnitFolder& folder, const std::string& name) {
  const auto path = folder.path + "/" + name;
  return files_.linkTarget(path) == nowhere || files_.read(path, largestUnit) == "";
}

}  // namespace vorli
