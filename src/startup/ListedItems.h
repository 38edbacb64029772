#pragma once

#include "ports/StartupFiles.h"
#include "ports/SystemStartupLists.h"
#include "startup/StartupSource.h"

#include <string>
#include <utility>
#include <vector>

namespace vorli {

/// Items that the system keeps in lists of its own: commands of the user's crontab that run at the start, and
/// sandboxed applications that may run in the background. They have no file, so the system's settings change
/// them.
class ListedItems final : public StartupSource {
 public:
  ListedItems(ports::SystemStartupLists& lists, ports::StartupFiles& files, std::string home)
      : lists_(lists), files_(files), home_(std::move(home)) {}

  std::vector<RawCandidate> candidates() override;
  bool hides(const RawCandidate& candidate) const override;

 private:
  std::vector<RawCandidate> commands();

  ports::SystemStartupLists& lists_;
  ports::StartupFiles& files_;
  const std::string home_;
};

}  // namespace vorli
