#pragma once

#include "formats/AutostartEntry.h"
#include "ports/InstalledApplications.h"
#include "ports/StartupFiles.h"
#include "ports/StartupPlaces.h"
#include "startup/FolderListing.h"
#include "startup/RawCandidate.h"
#include "startup/StartupSource.h"

#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace vorli {

using ports::AutostartFolders;

/// The system's entry with this file name. Empty when there is none.
std::optional<std::string> systemEntry(ports::StartupFiles& files, const AutostartFolders& folders,
                                       std::string_view fileName);

/// The entries that a session starts at login, and those that are paused or switched off. An entry is
/// identified by the application that it starts, or else by its file name.
class AutostartEntries final : public StartupSource {
 public:
  static constexpr std::size_t largestEntry = std::size_t{1024} * 1024;

  AutostartEntries(ports::StartupFiles& files, ports::InstalledApplications& applications,
                   ports::StartupPlaces places);

  std::vector<RawCandidate> candidates() override;
  bool hides(const RawCandidate& candidate) const override;

 private:
  /// An entry as it is in effect, or would be if it were not paused.
  struct Found {
    std::string plistURL;
    formats::AutostartEntry entry;
    bool isUsers = false;
    bool isUsersAlone = false;  // the system has no entry of this name
    bool isEnabled = true;
    bool isRemoved = false;  // as a leftover; counts as paused once its program is installed again
  };
  struct SystemEntry {
    std::string path;
    std::string text;
  };

  std::set<std::string> fileNames();
  std::optional<Found> effective(const std::string& fileName);
  std::optional<Found> usersEntry(const std::string& fileName, const std::string& text);
  std::optional<Found> pausedEntry(const std::string& path);
  std::optional<SystemEntry> systemsEntry(const std::string& fileName);
  std::optional<std::string> textIn(FolderListing& folder, const std::string& fileName);
  formats::AutostartEntry parsed(std::string_view text) const;
  std::optional<RawCandidate> candidateFrom(const std::string& fileName, const Found& found);
  std::optional<std::string> programPath(const formats::AutostartEntry& entry);
  const std::optional<std::string>& foundProgram(const std::string& program);
  std::optional<std::string> lookedUp(const std::string& program);
  bool isGone(const std::optional<std::string>& program);
  std::string identifierOf(const std::string& fileName, const std::optional<std::string>& program);

  ports::StartupFiles& files_;
  ports::InstalledApplications& applications_;
  const ports::StartupPlaces places_;
  // The folders and programs as the current scan found them.
  FolderListing usersFolder_;
  std::vector<FolderListing> systemFolders_;
  std::map<std::string, std::optional<std::string>> programs_;
  // Identifiers of the last listing: those taken by an entry or the name of its file, and those of parts of
  // the desktop.
  std::set<std::string, std::less<>> identifiers_;
  std::set<std::string, std::less<>> partsOfDesktop_;
};

}  // namespace vorli
