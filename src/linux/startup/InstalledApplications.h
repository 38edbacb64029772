#pragma once

#include "formats/DesktopEntry.h"
#include "linux/applications/DesktopEntryIndex.h"
#include "ports/InstalledApplications.h"

#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace vorli::linuxhost {

/// The desktop entries of this user, read at the first use and again by `lookAgain` if their folders have
/// changed. Unlike the index of the running applications, it may be used on a worker and watches nothing.
class InstalledApplications final : public ports::InstalledApplications {
 public:
  explicit InstalledApplications(DesktopEntryIndex::Places places) : places_(std::move(places)) {}

  void lookAgain() override;
  /// Prefers the entry with exactly this id to one that differs only in case.
  std::optional<std::string> urlForApplication(std::string_view bundleIdentifier) override;
  std::optional<std::string> urlForProgram(const std::string& path) override;
  std::optional<ports::BundleInfo> bundle(const std::string& path) override;

 private:
  struct Entry {
    std::string path;
    std::string name;
  };
  using FolderTimes = std::vector<std::pair<long, long>>;  // when each folder last changed

  void readOnce();
  void readFolder(const std::string& folder);
  void add(const std::string& id, const formats::DesktopEntry& entry);
  FolderTimes folderTimes() const;
  const std::string& realPathOf(const std::string& program);

  const DesktopEntryIndex::Places places_;
  std::optional<FolderTimes> readAt_;  // empty until the first reading
  std::map<std::string, Entry, std::less<>> byID_;
  std::map<std::string, std::string> idByLowerID_;
  std::map<std::string, std::string> idByPath_;
  std::map<std::string, std::string> idByProgram_;  // empty when several entries start the program
  std::map<std::string, std::string> realPaths_;    // of the programs asked for since `lookAgain`
};

}  // namespace vorli::linuxhost
