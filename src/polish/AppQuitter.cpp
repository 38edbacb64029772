#include "polish/AppQuitter.h"

#include "base/FilePath.h"
#include "base/Logger.h"
#include "base/UnicodeText.h"
#include "insights/ApplicationName.h"

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

namespace vorli {

namespace {

constexpr Logger quitLog{logSubsystem, "quitter"};

using ports::RunningApplication;

std::optional<std::string> identifierOf(const ports::ApplicationBundle& bundle) {
  return bundle.infoString("CFBundleIdentifier");
}

// Two missing identifiers count as equal.
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

// Returns the applications that the user may mean by `name`, the likeliest first. This program is never among
// them.
std::vector<RunningApplication> applicationsNamed(ports::Workspace& workspace,
                                                  const ports::ApplicationBundle& self, std::string_view name,
                                                  const ApplicationPathRules& rules) {
  const std::string wanted = lowercased(name);
  const auto own = identifierOf(self);
  std::vector<RunningApplication> shown, others;
  for (const auto& application : workspace.runningApplications()) {
    if (isIdentifiedBy(application, own)) continue;
    const auto shownName = rules.kind == ApplicationPathRules::Kind::folders
                               ? shownApplicationName(application, rules.kind)
                               : std::nullopt;
    if (shownName && lowercased(*shownName) == wanted) {
      shown.push_back(application);
    } else if (bearsName(application, wanted)) {
      others.push_back(application);
    }
  }
  shown.insert(shown.end(), others.begin(), others.end());
  return shown;
}

}  // namespace

ports::QuitAnswer quitByName(ports::Workspace& workspace, const ports::ApplicationBundle& self,
                             std::string_view name, const ApplicationPathRules& rules) {
  auto answer = ports::QuitAnswer::gone;
  // A copy, because the list belongs to the workspace that is being asked.
  const auto candidates = applicationsNamed(workspace, self, name, rules);
  for (const auto& application : candidates) {
    quitLog.log("terminating %{public}s (pid %d)", nameForLog(application), application.processIdentifier);
    answer = workspace.terminate(application.processIdentifier);
    if (answer != ports::QuitAnswer::cannotBeAsked) return answer;
  }
  if (candidates.empty()) quitLog.log("quit(byName:) no match for %{public}s", name);
  return answer;
}

ports::QuitAnswer answerToQuitByName(ports::Workspace& workspace, const ports::ApplicationBundle& self,
                                     std::string_view name, const ApplicationPathRules& rules) {
  auto answer = ports::QuitAnswer::gone;
  for (const auto& application : applicationsNamed(workspace, self, name, rules)) {
    answer = workspace.answerToTerminate(application.processIdentifier);
    if (answer != ports::QuitAnswer::cannotBeAsked) return answer;
  }
  return answer;
}

void quitHiddenApps(ports::Workspace& workspace, const ports::ApplicationBundle& self) {
  const auto owners = workspace.onScreenWindowOwnerPIDs();
  if (!owners) {
    quitLog.log("hidden quit: windows cannot be seen here, nobody is asked");
    return;
  }
  const auto own = identifierOf(self);
  for (const auto& application : workspace.runningApplications()) {
    if (application.activationPolicy != ports::ActivationPolicy::regular) continue;
    if (isIdentifiedBy(application, own)) continue;
    if (std::ranges::find(*owners, application.processIdentifier) != owners->end()) continue;
    quitLog.log("hidden quit: %{public}s", nameForLog(application));
    workspace.terminate(application.processIdentifier);
  }
}

}  // namespace vorli
