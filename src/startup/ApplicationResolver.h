#pragma once

#include "ports/InstalledApplications.h"
#include "startup/RawCandidate.h"

#include <optional>
#include <string>

namespace vorli {

/// Finds the application to which a startup item belongs. Called on a scan's worker.
class ApplicationResolver {
 public:
  explicit ApplicationResolver(ports::InstalledApplications& applications) : applications_(applications) {}

  /// Returns the application whose bundle contains the program, otherwise the one with the candidate's
  /// identifier, otherwise the one with its longest prefix of at least two pieces.
  std::optional<Resolved> resolveApp(const RawCandidate& candidate);

 private:
  std::optional<Resolved> read(const std::string& url);
  std::optional<Resolved> aroundProgram(const std::string& programPath);
  std::optional<Resolved> withIdentifier(const std::string& identifier);
  std::optional<Resolved> withBeginningOf(const std::string& identifier);

  ports::InstalledApplications& applications_;
};

}  // namespace vorli
