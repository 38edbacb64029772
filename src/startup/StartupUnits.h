#pragma once

#include "ports/StartupFiles.h"
#include "startup/StartupSource.h"
#include "startup/UnitIdentifier.h"
#include "startup/UnitSearch.h"

#include <optional>
#include <set>
#include <string>
#include <vector>

namespace vorli {

/// The units that a service manager starts automatically. A unit that only triggers a service, such as a
/// timer, counts as that service, which is the item that is paused, unless the trigger is masked. A unit is
/// identified by its name and its manager.
class StartupUnits final : public StartupSource {
 public:
  using Manager = UnitManager;

  StartupUnits(ports::StartupFiles& files, std::vector<UnitFolder> folders, Manager manager, std::string home,
               std::string initScripts = {});

  std::vector<RawCandidate> candidates() override;
  bool hides(const RawCandidate& candidate) const override;

 private:
  std::optional<RawCandidate> candidateOf(const std::string& name);
  RawCandidate candidateFrom(const FoundUnit& unit, const formats::UnitFile& described);
  bool isRemoved(const FoundUnit& unit, const RawCandidate& candidate) const;
  bool precedesAdministrators(const UnitFolder& folder) const;
  std::optional<std::string> plistURL(const FoundUnit& unit) const;
  std::optional<std::string> programPath(const std::string& program) const;

  ports::StartupFiles& files_;
  UnitSearch search_;
  const Manager manager_;
  const std::string home_;
  // Units of the last listing that no package installed.
  std::set<std::string, std::less<>> notOfPackages_;
};

/// Makes the name of an item from a unit's description, without specifiers and the text after a dash. Empty
/// when nothing is left.
std::optional<std::string> nameFromDescription(std::string_view description);

}  // namespace vorli
