#pragma once

#include "ports/LaunchControl.h"
#include "ports/StartupFiles.h"
#include "ports/SystemUnits.h"
#include "startup/StartupControl.h"
#include "startup/UnitSearch.h"
#include "startup/WorkQueue.h"

#include <string>
#include <vector>

namespace vorli {

/// Units of the user's own service manager. The user's own files are renamed, files of packages are masked in
/// the user's first folder, and the helper moves files that the administrator installed for all users. The
/// links that enable a unit are always kept, so that it comes back exactly as it was.
class UserUnitControl final : public StartupControl {
 public:
  /// `folders` are those of the manager, the user's first.
  UserUnitControl(ports::StartupFiles& files, ports::LaunchControl& launchControl, WorkQueue& worker,
                  StartupControl& ofHelper, std::vector<UnitFolder> folders);

  Task<Outcome> setEnabled(Enablement to, std::string plistURL) override;
  Task<Outcome> remove(std::string plistURL) override;
  Task<Outcome> undoRemove(std::string plistURL) override;
  Task<> commitRemoval(std::string plistURL) override;
  Task<> quit(std::string plistURL) override;

 private:
  Task<bool> isHelpers(std::string plistURL);

  ports::StartupFiles& files_;
  ports::LaunchControl& launchControl_;
  WorkQueue& worker_;
  StartupControl& ofHelper_;
  const std::vector<UnitFolder> folders_;
};

/// Units of the system: the helper moves a file in /etc, and the service manager itself masks what packages
/// installed.
class SystemUnitControl final : public StartupControl {
 public:
  /// `administratorsFolder` ends in a slash; `ofHelper` moves the files there.
  SystemUnitControl(Scheduler& scheduler, ports::StartupFiles& files, ports::SystemUnits& units,
                    WorkQueue& worker, StartupControl& ofHelper, std::string administratorsFolder);

  Task<Outcome> setEnabled(Enablement to, std::string plistURL) override;
  Task<Outcome> remove(std::string plistURL) override;
  Task<Outcome> undoRemove(std::string plistURL) override;
  Task<> commitRemoval(std::string plistURL) override;

 private:
  /// The part of the system that pauses and resumes a unit; `none` when the unit does not exist.
  enum class Mover { helper, manager, none };

  Task<Mover> moverOf(std::string plistURL);
  static Mover moverInEtc(ports::StartupFiles& files, const std::string& path);
  Task<Outcome> mask(Enablement to, std::string plistURL);

  Scheduler& scheduler_;
  ports::StartupFiles& files_;
  ports::SystemUnits& units_;
  WorkQueue& worker_;
  StartupControl& ofHelper_;
  const std::string administratorsFolder_;
};

}  // namespace vorli
