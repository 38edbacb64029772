#include "startup/StartupUnits.h"

#include "base/UnicodeText.h"
#include "formats/UnitFile.h"
#include "startup/SessionItems.h"

#include <utility>

namespace vorli {

namespace {

using Owner = UnitFolder::Owner;
using Source = StartupItem::Source;

// True for the owners whose files may be renamed.
bool isOfPerson(Owner owner) {
  return owner == Owner::user || owner == Owner::administrator;
}

// Name of the service that a timer, a path or a socket starts; empty for other units, and for a socket that
// starts one service for each connection.
std::optional<std::string> triggeredService(const std::string& name, const formats::UnitFile& unit) {
  const auto parts = formats::splitUnitName(name);
  if (!parts || parts->suffix == ".service" || unit.acceptsConnections) return std::nullopt;
  if (!unit.triggered.empty() && !unit.triggered.contains('%')) return unit.triggered;
  return name.substr(0, name.size() - parts->suffix.size()) + ".service";
}

}  // namespace

StartupUnits::StartupUnits(ports::StartupFiles& files, std::vector<UnitFolder> folders, Manager manager,
                           std::string home, std::string initScripts)
    : files_(files),
      search_(files, std::move(folders), std::move(initScripts)),
      manager_(manager),
      home_(std::move(home)) {}

std::vector<RawCandidate> StartupUnits::candidates() {
  notOfPackages_.clear();
  std::vector<RawCandidate> candidates;
  for (const auto& name : search_.startedNames())
    if (auto candidate = candidateOf(name)) candidates.push_back(std::move(*candidate));
  return candidates;
}

bool StartupUnits::hides(const RawCandidate& candidate) const {
  if (isOwnItem(candidate.identifier)) return true;
  return !notOfPackages_.contains(candidate.identifier) && keepsSessionAlive(candidate, home_);
}

std::optional<RawCandidate> StartupUnits::candidateOf(const std::string& name) {
  const auto unit = search_.find(name);
  if (!unit) return std::nullopt;
  const auto described = formats::parseUnitFile(unit->text);
  const auto service = triggeredService(unit->name, described);
  // A masked trigger stays an item of its own, because it is the unit that must be resumed.
  const auto started = service && unit->isEnabled ? search_.find(*service) : std::nullopt;
  const auto& listed = started ? *started : *unit;
  auto candidate = candidateFrom(listed, started ? formats::parseUnitFile(started->text) : described);
  candidate.registersAtLogin = !service;
  if (isRemoved(listed, candidate)) return std::nullopt;
  return candidate;
}

// A package's file cannot be renamed, so a mask removes its unit. Only a unit without its program can be
// removed.
bool StartupUnits::isRemoved(const FoundUnit& unit, const RawCandidate& candidate) const {
  if (isOfPerson(unit.folder->owner) || unit.isEnabled) return false;
  return candidate.programPath && candidate.programPath->starts_with('/') &&
         files_.isMissing(*candidate.programPath);
}

RawCandidate StartupUnits::candidateFrom(const FoundUnit& unit, const formats::UnitFile& described) {
  const auto owner = unit.folder->owner;
  RawCandidate candidate;
  candidate.identifier = unitIdentifier(unit.name, manager_);
  candidate.displayNameHint = nameFromDescription(described.description);
  if (!candidate.displayNameHint) {
    const auto parts = formats::splitUnitName(unit.name);
    candidate.displayNameHint = capitalized(parts ? parts->stem : std::string_view(unit.name));
  }
  candidate.plistURL = plistURL(unit);
  // Only an item that can be removed is called a leftover.
  if (candidate.plistURL) candidate.programPath = programPath(described.program);
  candidate.plistIsUserWritable = manager_ == Manager::user && owner != Owner::administrator;
  candidate.isEnabled = unit.isEnabled;
  candidate.source = owner == Owner::user ? Source::userLinked : Source::autoInstalled;
  if (isOfPerson(owner)) notOfPackages_.insert(candidate.identifier);
  return candidate;
}

// True for a folder that comes before the administrator's, where a mask has no effect on it.
bool StartupUnits::precedesAdministrators(const UnitFolder& folder) const {
  for (const auto& each : search_.folders()) {
    if (each.owner == Owner::administrator) return false;
    if (&each == &folder) return true;
  }
  return false;
}

// Path of the file to move, or of the mask. A unit that overrides another cannot be moved away, the helper
// does not move links or replace files, and a unit made from a template has no file: these are masked by
// name, in the folder that this manager searches first. The system's manager masks only units without a file
// there.
std::optional<std::string> StartupUnits::plistURL(const FoundUnit& unit) const {
  const bool isInEtc = unit.folder->owner == Owner::administrator;
  const bool isFixed = isInEtc && (unit.overridesAnother || unit.isLink || unit.hasEarlierFile);
  if (manager_ == Manager::system) {
    if (isFixed || precedesAdministrators(*unit.folder)) return std::nullopt;
    return unit.folder->path + "/" + unit.name;
  }
  const bool isMasked = unit.isInstance || isFixed;
  return (isMasked ? search_.folders().front().path : unit.folder->path) + "/" + unit.name;
}

std::optional<std::string> StartupUnits::programPath(const std::string& program) const {
  constexpr std::string_view homeSpecifier = "%h/";
  if (program.empty()) return std::nullopt;
  if (manager_ == Manager::user && program.starts_with(homeSpecifier))
    return home_ + program.substr(homeSpecifier.size() - 1);
  if (program.contains('%')) return std::nullopt;
  return program;
}

std::optional<std::string> nameFromDescription(std::string_view description) {
  description = description.substr(0, description.find(" - "));
  std::string name;
  for (std::size_t i = 0; i < description.size(); ++i) {
    if (description[i] == '%') {
      ++i;  // a specifier is two characters long
    } else {
      name += description[i];
    }
  }
  const auto text = trimmed(name);
  if (text.empty()) return std::nullopt;
  return capitalizingFirst(text);
}

}  // namespace vorli
