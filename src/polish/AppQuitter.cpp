#include "polish/AppQuitter.h"

#include "base/Logger.h"
#include "base/UnicodeText.h"

#include <algorithm>
#include <optional>
#include <string>

namespace vorli {

namespace {

constexpr Logger logger(logSubsystem, "quitter");

using ports::RunningApplication;

std::optional<std::string> identifierOf(const ports::ApplicationBundle& bundle) {
  return bundle.infoString("CFBundleIdentifier");
}

// Two that have no identifier count as the same.
bool isIdentifiedBy(const RunningApplication& application, const std::optional<std::string>& identifier) {
  if (!application.bundleIdentifier || !identifier) return !application.bundleIdentifier && !identifier;
  return *application.bundleIdentifier == std::string_view(*identifier);
}

std::string withoutMaker(std::string name) {
  constexpr std::string_view maker = "google ";
  for (auto at = name.find(maker); at != std::string::npos; at = name.find(maker, at)) {
    name.erase(at, maker.size());
  }
  return name;
}

// The last component of a path without its extension; of several, only the last goes.
std::string_view fileStem(std::string_view path) {
  while (path.size() > 1 && path.ends_with('/')) path.remove_suffix(1);
  const auto name = path.substr(path.rfind('/') + 1);
  const auto dot = name.rfind('.');
  return dot == std::string_view::npos || dot == 0 ? name : name.substr(0, dot);
}

bool bearsName(const RunningApplication& application, std::string_view wanted) {
  if (application.localizedName) {
    const std::string name = lowercased(*application.localizedName);
    if (name == wanted || withoutMaker(name) == wanted) return true;
  }
  return application.bundleURL && lowercased(fileStem(*application.bundleURL)) == wanted;
}

std::string_view nameForLog(const RunningApplication& application) {
  return application.localizedName ? application.localizedName->view() : "?";
}

}  // namespace

bool quitByName(ports::Workspace& workspace, const ports::ApplicationBundle& self, std::string_view name) {
  const std::string wanted = lowercased(name);
  const auto own = identifierOf(self);
  for (const auto& application : workspace.runningApplications()) {
    if (isIdentifiedBy(application, own) || !bearsName(application, wanted)) continue;
    logger.log("terminating %{public}s (pid %d)", nameForLog(application), application.processIdentifier);
    return workspace.terminate(application.processIdentifier);
  }
  logger.log("quit(byName:) no match for %{public}s", name);
  return false;
}

void quitHiddenApps(ports::Workspace& workspace, const ports::ApplicationBundle& self) {
  const auto owners = workspace.onScreenWindowOwnerPIDs();
  if (!owners) {
    logger.log("hidden quit: windows cannot be seen here, nobody is asked");
    return;
  }
  const auto own = identifierOf(self);
  for (const auto& application : workspace.runningApplications()) {
    if (application.activationPolicy != ports::ActivationPolicy::regular) continue;
    if (isIdentifiedBy(application, own)) continue;
    if (std::ranges::find(*owners, application.processIdentifier) != owners->end()) continue;
    logger.log("hidden quit: %{public}s", nameForLog(application));
    workspace.terminate(application.processIdentifier);
  }
}

}  // namespace vorli
