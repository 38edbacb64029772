#include "startup/LaunchDirectories.h"

#include "base/FilePath.h"
#include "contract/SystemStartupFolders.h"
#include "formats/PropertyList.h"

#include <cstddef>
#include <utility>

namespace vorli {

namespace {

using Source = StartupItem::Source;

constexpr std::size_t largestPlist = std::size_t{1024} * 1024;

// Other files are ignored, including removed jobs. The extension is case-sensitive.
bool isPlist(std::string_view name) {
  return pathExtension(name) == "plist";
}
bool isPaused(std::string_view name) {
  return name.size() > helper::disabledExtension.size() && name.ends_with(helper::disabledExtension);
}

// Empty if any element of the array is not a text.
std::optional<std::string> firstOfTexts(const formats::PropertyList::Value& array) {
  if (array.kind() != formats::PropertyList::Kind::array || array.count() == 0) return std::nullopt;
  for (std::size_t i = 0; i < array.count(); ++i) {
    if (!array.element(i).text()) return std::nullopt;
  }
  return std::string(*array.element(0).text());
}

std::optional<std::string> textAt(const formats::PropertyList::Value& dictionary, std::string_view key) {
  const auto value = dictionary.find(key);
  const auto text = value ? value->text() : std::nullopt;
  if (!text) return std::nullopt;
  return std::string(*text);
}

std::optional<std::string> programPath(const formats::PropertyList::Value& dictionary) {
  if (auto program = textAt(dictionary, "Program")) return program;
  const auto arguments = dictionary.find("ProgramArguments");
  return arguments ? firstOfTexts(*arguments) : std::nullopt;
}

}  // namespace

LaunchDirectories::LaunchDirectories(ports::StartupFiles& files, const std::string& home)
    : files_(files),
      folders_{{home + "/Library/LaunchAgents", true, Source::userLinked},
               {"/Library/LaunchAgents", false, Source::autoInstalled},
               {"/Library/LaunchDaemons", false, Source::autoInstalled}} {}

std::vector<RawCandidate> LaunchDirectories::scanLaunchDirectories() {
  std::vector<RawCandidate> candidates;
  for (const auto& folder : folders_) {
    const auto names = files_.visibleNames(folder.url);
    if (!names) continue;
    for (const auto& name : *names) {
      if (auto candidate = candidateFromFile(folder, name)) candidates.push_back(std::move(*candidate));
    }
  }
  return candidates;
}

std::optional<RawCandidate> LaunchDirectories::candidateFromFile(const LaunchDir& folder,
                                                                 const std::string& name) {
  if (!isPlist(name) && !isPaused(name)) return std::nullopt;
  const std::string url = folder.url + "/" + name;
  auto plist = parseLaunchPlist(url);
  if (!plist) return std::nullopt;

  RawCandidate candidate;
  candidate.identifier = std::move(plist->label);
  candidate.programPath = std::move(plist->programPath);
  candidate.plistURL = isPaused(name) ? std::string(deletingPathExtension(url)) : url;
  candidate.plistIsUserWritable = folder.userWritable;
  candidate.registersAtLogin = plist->runAtLoad;
  candidate.isEnabled = !isPaused(name);
  candidate.source = folder.source;
  return candidate;
}

std::optional<LaunchPlist> LaunchDirectories::parseLaunchPlist(const std::string& url) {
  const auto bytes = files_.read(url, largestPlist);
  if (!bytes) return std::nullopt;
  const auto list = formats::readPropertyList(*bytes, largestPlist);
  if (!list || list->root().kind() != formats::PropertyList::Kind::dictionary) return std::nullopt;

  const auto dictionary = list->root();
  const auto runAtLoad = dictionary.find("RunAtLoad");
  return LaunchPlist{
      .label = textAt(dictionary, "Label").value_or(std::string(fileStem(url))),
      .programPath = programPath(dictionary),
      .runAtLoad = runAtLoad && runAtLoad->boolean().value_or(false),
  };
}

}  // namespace vorli
