#include "startup/ItemNames.h"

#include "base/UnicodeText.h"
#include "startup/UnitIdentifier.h"

#include <algorithm>

namespace vorli {

namespace {

// Converts only ASCII letters to lower case, so that offsets in the result are offsets in the text.
std::string foldedASCII(std::string_view text) {
  std::string folded(text);
  for (char& c : folded) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return folded;
}

// "/x/Acme.app/y" gives "Acme". Empty for a path outside a bundle.
std::string_view outermostBundleName(std::string_view path) {
  const auto at = foldedASCII(path).find(".app/");
  if (at == std::string::npos) return {};
  const auto before = path.substr(0, at);
  return before.substr(before.rfind('/') + 1);
}

}  // namespace

std::vector<std::string_view> identifierPieces(std::string_view identifier) {
  std::vector<std::string_view> pieces;
  while (!identifier.empty()) {
    const auto piece = identifier.substr(0, identifier.find('.'));
    if (!piece.empty()) pieces.push_back(piece);
    identifier.remove_prefix(std::min(piece.size() + 1, identifier.size()));
  }
  return pieces;
}

std::string prettyName(std::string_view identifier) {
  const auto pieces = identifierPieces(identifier);
  if (pieces.empty()) return std::string(identifier);
  if (pieces.size() == 1) return capitalized(pieces.front());

  std::string last(pieces.back());
  std::ranges::replace(last, '-', ' ');
  const std::string maker = capitalized(pieces[pieces.size() - 2]);
  const std::string product = capitalized(last);
  return lowercased(maker) == lowercased(product) ? maker : maker + " " + product;
}

std::optional<std::string> installerName(const RawCandidate& candidate,
                                         const std::optional<Resolved>& resolved, HostSystem system) {
  if (candidate.source == StartupItem::Source::userLinked) return "you";
  if (resolved && !resolved->displayName.empty()) return resolved->displayName;
  if (candidate.programPath) {
    const auto name = outermostBundleName(*candidate.programPath);
    if (!name.empty()) return std::string(name);
  }
  // The type at the end of a unit's name says nothing about who made it.
  const bool isMac = system == HostSystem::macOS;
  const auto pieces = identifierPieces(isMac ? std::string_view(candidate.identifier)
                                             : withoutUnitSuffix(candidate.identifier));
  if (pieces.size() < 2) return std::nullopt;
  return capitalized(pieces[1]);
}

}  // namespace vorli
