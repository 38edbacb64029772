#include "startup/BackgroundItems.h"

#include "base/FilePath.h"
#include "base/Logger.h"

#include <algorithm>
#include <iterator>
#include <string_view>
#include <tuple>
#include <utility>

namespace vorli {

namespace {

constexpr Logger backgroundLog{logSubsystem, "startup"};

using SystemsContainers = std::vector<ports::BackgroundContainer>;

bool isBefore(const ports::BackgroundContainer& one, const ports::BackgroundContainer& other) {
  return std::tie(one.appURL, one.internalURLs, one.isEnabled) <
         std::tie(other.appURL, other.internalURLs, other.isEnabled);
}

// Neither the containers nor what is in them has an order.
SystemsContainers putInOrder(SystemsContainers containers) {
  for (auto& container : containers) std::ranges::sort(container.internalURLs);
  std::ranges::sort(containers, isBefore);
  return containers;
}

SystemsContainers comparable(const std::vector<BTMFileParser::Container>& containers) {
  SystemsContainers result;
  for (const auto& container : containers)
    result.push_back({container.appURL, container.isEnabled, container.internalURLs});
  return putInOrder(std::move(result));
}

std::size_t countMissing(const SystemsContainers& wanted, const SystemsContainers& present) {
  SystemsContainers missing;
  std::ranges::set_difference(wanted, present, std::back_inserter(missing), isBefore);
  return missing.size();
}

// Returns the innermost application that contains the file, or the file itself.
std::string enclosingApplication(const std::string& url) {
  for (std::string_view path = url; hasTwoComponents(path); path = parentPath(path)) {
    if (pathExtension(path) == "app") return std::string(path);
  }
  return url;
}

}  // namespace

BackgroundItems::BackgroundItems(ports::StartupFiles& files, ports::InstalledApplications& applications,
                                 ports::SystemStartupLists& lists, std::string home)
    : files_(files), applications_(applications), lists_(lists), home_(std::move(home)) {}

std::vector<RawCandidate> BackgroundItems::candidates() {
  const std::string store = home_ + std::string(BTMFileParser::pathInHome);
  const auto containers = BTMFileParser::parse(files_, store);
  if (!std::exchange(isCompared_, true)) compareWithSystem(store, containers);
  return candidatesFromContainers(containers);
}

void BackgroundItems::compareWithSystem(const std::string& store,
                                        const std::vector<BTMFileParser::Container>& containers) {
  auto systems = lists_.backgroundContainers(store);
  if (!systems) return;
  const auto theirs = putInOrder(std::move(*systems));
  const auto ours = comparable(containers);
  if (ours == theirs) return;
  backgroundLog.log("The store of background items: Vorli alone reads %ld containers, the system alone %ld",
                    countMissing(ours, theirs), countMissing(theirs, ours));
}

std::vector<RawCandidate> BackgroundItems::candidatesFromContainers(
    const std::vector<BTMFileParser::Container>& containers) {
  std::vector<RawCandidate> candidates;
  const auto add = [&](const std::string& url, bool isEnabled) {
    if (auto candidate = candidateFromBundleURL(url, isEnabled)) candidates.push_back(std::move(*candidate));
  };
  for (const auto& container : containers) {
    if (container.appURL) add(*container.appURL, container.isEnabled);
    for (const auto& url : container.internalURLs) add(url, container.isEnabled);
  }
  return candidates;
}

std::optional<RawCandidate> BackgroundItems::candidateFromBundleURL(const std::string& url, bool isEnabled) {
  if (!hasTwoComponents(url)) return std::nullopt;  // the root of a volume is not a program
  const std::string bundleURL = enclosingApplication(url);
  const std::string stem(fileStem(bundleURL));
  const auto bundle = applications_.bundle(bundleURL).value_or(ports::BundleInfo());

  RawCandidate candidate;
  candidate.identifier = bundle.bundleIdentifier.value_or(stem);
  candidate.displayNameHint = bundle.bundleDisplayName ? bundle.bundleDisplayName : bundle.bundleName;
  if (!candidate.displayNameHint) candidate.displayNameHint = stem;
  candidate.programPath = bundleURL;
  candidate.registersAtLogin = true;
  candidate.isEnabled = isEnabled;
  candidate.source = StartupItem::Source::autoInstalled;
  return candidate;
}

}  // namespace vorli
