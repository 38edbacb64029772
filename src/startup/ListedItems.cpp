#include "startup/ListedItems.h"

#include "base/FilePath.h"
#include "formats/Crontab.h"
#include "startup/CommandIdentifier.h"
#include "startup/SessionItems.h"

namespace vorli {

std::vector<RawCandidate> ListedItems::candidates() {
  auto candidates = commands();
  for (const auto& permission : lists_.backgroundPermissions()) {
    RawCandidate candidate;
    candidate.identifier = permission.applicationIdentifier;
    candidate.registersAtLogin = true;
    candidate.isEnabled = permission.isAllowed;
    candidates.push_back(std::move(candidate));
  }
  return candidates;
}

bool ListedItems::hides(const RawCandidate& candidate) const {
  return isOwnItem(candidate.identifier) || keepsSessionAlive(candidate, home_);
}

std::vector<RawCandidate> ListedItems::commands() {
  std::vector<RawCandidate> candidates;
  for (const auto& command : formats::parseRebootCommands(lists_.crontab().value_or(""))) {
    auto program = formats::programOfCommand(command);
    if (program.starts_with("~/")) program.replace(0, 1, home_);
    const std::string name(lastPathComponent(program));
    if (name.empty() || name == "/") continue;
    RawCandidate candidate;
    candidate.identifier = commandIdentifier(name);
    candidate.displayNameHint = std::string(fileStem(name));
    // Without its program the command would be a leftover, but there is no file that could be removed.
    const bool isGone = program.starts_with('/') && files_.isMissing(program);
    if (!isGone) candidate.programPath = program;
    candidate.registersAtLogin = true;
    candidate.source = StartupItem::Source::userLinked;  // nobody else writes the user's table
    candidates.push_back(std::move(candidate));
  }
  return candidates;
}

}  // namespace vorli
