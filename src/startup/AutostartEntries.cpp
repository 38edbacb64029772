#include "startup/AutostartEntries.h"

#include "base/FilePath.h"
#include "contract/SystemStartupFolders.h"
#include "formats/PauseMarks.h"
#include "startup/AutostartOverride.h"
#include "startup/CommandIdentifier.h"
#include "startup/SessionItems.h"
#include "startup/UnitIdentifier.h"

#include <utility>

namespace vorli {

namespace {

using Source = StartupItem::Source;

constexpr std::string_view suffix = ".desktop";

// Keeps the suffix of an entry whose name is like that of a unit or a command: the items of these have such
// identifiers, and items with equal identifiers become one.
std::string identifierNamed(std::string name) {
  const bool isAmbiguous = withoutUnitSuffix(name) != name || withoutCommandEnding(name) != name;
  if (isAmbiguous) name += suffix;
  return name;
}

std::string identifierOfFile(const std::string& fileName) {
  return identifierNamed(fileName.substr(0, fileName.size() - suffix.size()));
}

}  // namespace

std::optional<std::string> systemEntry(ports::StartupFiles& files, const AutostartFolders& folders,
                                       std::string_view fileName) {
  for (const auto& folder : folders.systems) {
    auto path = folder + "/" + std::string(fileName);
    if (files.exists(path)) return path;
  }
  return std::nullopt;
}

AutostartEntries::AutostartEntries(ports::StartupFiles& files, ports::InstalledApplications& applications,
                                   ports::StartupPlaces places)
    : files_(files),
      applications_(applications),
      places_(std::move(places)),
      usersFolder_(files, places_.autostart.user) {}

std::vector<RawCandidate> AutostartEntries::candidates() {
  usersFolder_ = FolderListing(files_, places_.autostart.user);
  systemFolders_.clear();
  for (const auto& folder : places_.autostart.systems) systemFolders_.emplace_back(files_, folder);
  programs_.clear();
  partsOfDesktop_.clear();
  const auto names = fileNames();
  identifiers_.clear();
  for (const auto& name : names) identifiers_.insert(identifierOfFile(name));
  std::vector<RawCandidate> candidates;
  for (const auto& name : names) {
    const auto found = effective(name);
    if (!found) continue;
    if (auto candidate = candidateFrom(name, *found)) candidates.push_back(std::move(*candidate));
  }
  return candidates;
}

// Hides none of the user's own entries, whatever they start.
bool AutostartEntries::hides(const RawCandidate& candidate) const {
  if (isOwnItem(candidate.identifier)) return true;
  if (candidate.source == Source::userLinked) return false;
  return partsOfDesktop_.contains(candidate.identifier) || keepsSessionAlive(candidate, places_.home);
}

std::set<std::string> AutostartEntries::fileNames() {
  std::set<std::string> names;
  for (std::string_view name : usersFolder_.names()) {
    if (name.ends_with(helper::disabledExtension)) name.remove_suffix(helper::disabledExtension.size());
    if (name.ends_with(suffix)) names.emplace(name);
  }
  for (auto& folder : systemFolders_) {
    for (const auto& name : folder.names())
      if (name.ends_with(suffix)) names.insert(name);
  }
  return names;
}

std::optional<AutostartEntries::Found> AutostartEntries::effective(const std::string& fileName) {
  if (const auto text = textIn(usersFolder_, fileName)) return usersEntry(fileName, *text);
  auto system = systemsEntry(fileName);
  if (!system) return pausedEntry(places_.autostart.user + "/" + fileName);
  auto entry = parsed(system->text);
  if (entry.isOffIn(places_.desktops)) return std::nullopt;  // this session never starts it
  return Found{.plistURL = std::move(system->path), .entry = std::move(entry)};
}

// Describes a stub that only hides the system's entry by the entry that it hides.
std::optional<AutostartEntries::Found> AutostartEntries::usersEntry(const std::string& fileName,
                                                                    const std::string& text) {
  const auto system = systemsEntry(fileName);
  if (const auto kind = overrideKind(fileName, text)) {
    if (!system) return std::nullopt;
    return Found{.plistURL = system->path,
                 .entry = parsed(system->text),
                 .isEnabled = false,
                 .isRemoved = kind == AutostartOverride::removed};
  }
  const auto unmarked = formats::withoutPauseMarks(text);
  Found found{.plistURL = places_.autostart.user + "/" + fileName,
              .entry = parsed(unmarked ? *unmarked : text),
              .isUsers = true,
              .isUsersAlone = !system,
              .isEnabled = !unmarked};
  if (found.entry.isOffIn(places_.desktops)) found.isEnabled = false;
  if (found.entry.program.empty() && system) found.entry = parsed(system->text);
  return found;
}

std::optional<AutostartEntries::Found> AutostartEntries::pausedEntry(const std::string& path) {
  const auto text = files_.read(path + std::string(helper::disabledExtension), largestEntry);
  if (!text) return std::nullopt;
  const auto unmarked = formats::withoutPauseMarks(*text);
  return Found{.plistURL = path,
               .entry = parsed(unmarked ? *unmarked : *text),
               .isUsers = true,
               .isUsersAlone = true,
               .isEnabled = false};
}

std::optional<AutostartEntries::SystemEntry> AutostartEntries::systemsEntry(const std::string& fileName) {
  for (auto& folder : systemFolders_)
    if (auto text = textIn(folder, fileName))
      return SystemEntry{folder.path() + "/" + fileName, std::move(*text)};
  return std::nullopt;
}

// A file that cannot be read overrides others all the same, and counts as empty.
std::optional<std::string> AutostartEntries::textIn(FolderListing& folder, const std::string& fileName) {
  if (!folder.mayHave(fileName)) return std::nullopt;
  const auto path = folder.path() + "/" + fileName;
  auto text = files_.read(path, largestEntry);
  if (!text && files_.exists(path)) text.emplace();
  return text;
}

formats::AutostartEntry AutostartEntries::parsed(std::string_view text) const {
  return formats::parseAutostartEntry(text, places_.locales);
}

std::optional<RawCandidate> AutostartEntries::candidateFrom(const std::string& fileName, const Found& found) {
  const auto& entry = found.entry;
  if (entry.program.empty() || !entry.belongsIn(places_.desktops)) return std::nullopt;

  RawCandidate candidate;
  candidate.programPath = programPath(entry);
  if (found.isRemoved && isGone(candidate.programPath)) return std::nullopt;
  candidate.identifier = identifierOf(fileName, candidate.programPath);
  if (!entry.name.empty()) candidate.displayNameHint = entry.name;
  candidate.plistURL = found.plistURL;
  candidate.plistIsUserWritable = found.isUsers;
  candidate.registersAtLogin = true;
  candidate.isEnabled = found.isEnabled;
  candidate.source = found.isUsersAlone ? Source::userLinked : Source::autoInstalled;
  if (entry.isPartOfDesktop) partsOfDesktop_.insert(candidate.identifier);
  return candidate;
}

// Returns a path at which nothing exists when the program in TryExec is missing: the entry is then a
// leftover.
std::optional<std::string> AutostartEntries::programPath(const formats::AutostartEntry& entry) {
  const auto& needed = entry.tryExec;
  if (!needed.empty() && !foundProgram(needed)) return needed.contains('/') ? needed : "/usr/bin/" + needed;
  return foundProgram(entry.program).value_or(entry.program);
}

// Many entries start the same program.
const std::optional<std::string>& AutostartEntries::foundProgram(const std::string& program) {
  const auto [place, isFirst] = programs_.try_emplace(program);
  if (isFirst) place->second = lookedUp(program);
  return place->second;
}

std::optional<std::string> AutostartEntries::lookedUp(const std::string& program) {
  if (program.contains('/')) return files_.exists(program) ? std::optional(program) : std::nullopt;
  for (const auto& folder : places_.programFolders) {
    auto path = folder + "/" + program;
    if (files_.exists(path)) return path;
  }
  return std::nullopt;
}

bool AutostartEntries::isGone(const std::optional<std::string>& program) {
  return program && program->starts_with('/') && files_.isMissing(*program);
}

// Two entries of one application stay two items, because each is paused by its own file. No entry takes an
// identifier that is the file name of another one.
std::string AutostartEntries::identifierOf(const std::string& fileName,
                                           const std::optional<std::string>& program) {
  auto identifier = identifierOfFile(fileName);
  if (applications_.urlForApplication(identifier) || !program) return identifier;
  const auto url = applications_.urlForProgram(*program);
  const auto bundle = url ? applications_.bundle(*url) : std::nullopt;
  if (!bundle || !bundle->bundleIdentifier) return identifier;
  auto ofApplication = identifierNamed(*bundle->bundleIdentifier);
  return identifiers_.insert(ofApplication).second ? ofApplication : identifier;
}

}  // namespace vorli
