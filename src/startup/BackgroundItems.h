#pragma once

#include "ports/InstalledApplications.h"
#include "ports/StartupFiles.h"
#include "ports/SystemStartupLists.h"
#include "startup/BTMFileParser.h"
#include "startup/RawCandidate.h"
#include "startup/StartupSource.h"

#include <optional>
#include <string>
#include <vector>

namespace vorli {

/// The user's items in the system's own store of background items.
class BackgroundItems final : public StartupSource {
 public:
  /// `home` is the user's home folder, without a slash at its end.
  BackgroundItems(ports::StartupFiles& files, ports::InstalledApplications& applications,
                  ports::SystemStartupLists& lists, std::string home);

  /// The first call also has the system read the store, and logs how much of it the system reads differently.
  std::vector<RawCandidate> candidates() override;

  /// Returns the candidates of the containers: for each its application and its helpers.
  std::vector<RawCandidate> candidatesFromContainers(const std::vector<BTMFileParser::Container>& containers);

  /// Returns the candidate for a bundle; a helper inside an application counts as the application. A file
  /// that is not a bundle is named after its file name. Empty for the root of a volume.
  std::optional<RawCandidate> candidateFromBundleURL(const std::string& url, bool isEnabled);

 private:
  void compareWithSystem(const std::string& store, const std::vector<BTMFileParser::Container>& containers);

  ports::StartupFiles& files_;
  ports::InstalledApplications& applications_;
  ports::SystemStartupLists& lists_;
  const std::string home_;
  bool isCompared_ = false;  // resolving bookmarks takes the system much longer than reading them
};

}  // namespace vorli
