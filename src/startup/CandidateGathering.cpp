#include "startup/CandidateGathering.h"

#include <cstddef>
#include <utility>
#include <vector>

namespace vorli {

namespace {

using Source = StartupItem::Source;

void gather(RawCandidate candidate, GatheredCandidates& gathered) {
  const auto place = gathered.byIdentifier.find(candidate.identifier);
  if (place != gathered.byIdentifier.end()) {
    place->second = mergeCandidate(place->second, candidate);
  } else {
    auto identifier = candidate.identifier;
    gathered.byIdentifier.emplace(std::move(identifier), std::move(candidate));
  }
}

}  // namespace

RawCandidate mergeCandidate(const std::optional<RawCandidate>& existing, const RawCandidate& incoming) {
  if (!existing) return incoming;
  RawCandidate merged = *existing;
  if (!merged.displayNameHint) merged.displayNameHint = incoming.displayNameHint;
  if (!merged.programPath) merged.programPath = incoming.programPath;
  if (!merged.plistURL) merged.plistURL = incoming.plistURL;
  merged.plistIsUserWritable |= incoming.plistIsUserWritable;
  merged.registersAtLogin |= incoming.registersAtLogin;
  merged.isEnabled &= incoming.isEnabled;
  if (incoming.source == Source::userLinked) merged.source = Source::userLinked;
  return merged;
}

GatheredCandidates gatherCandidates(std::span<StartupSource* const> sources) {
  std::vector<std::vector<RawCandidate>> listed(sources.size());
  for (auto i = sources.size(); i-- > 0;) listed[i] = sources[i]->candidates();
  GatheredCandidates gathered;
  for (std::size_t i = 0; i < sources.size(); ++i) {
    for (auto& candidate : listed[i]) {
      if (sources[i]->hides(candidate)) {
        ++gathered.hidden;
      } else {
        gather(std::move(candidate), gathered);
      }
    }
  }
  return gathered;
}

}  // namespace vorli
