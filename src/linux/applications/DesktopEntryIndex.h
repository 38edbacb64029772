#pragma once

#include "base/Scheduler.h"
#include "formats/DesktopEntry.h"
#include "linux/applications/DesktopEntryPlaces.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

class QSocketNotifier;

namespace vorli::linuxhost {

/// All desktop entries of this user, by id and by the program that they start. Reads the folders once, and
/// again when inotify reports a change; a burst of changes, such as a package upgrade, causes one reading.
/// Main thread.
class DesktopEntryIndex {
 public:
  using Places = DesktopEntryPlaces;

  DesktopEntryIndex(Scheduler& scheduler, Places places);
  ~DesktopEntryIndex();

  /// The entry with this id; null when there is none or it is hidden.
  const formats::DesktopEntry* byID(std::string_view id) const;
  /// The entry read from this file; null when there is none, or another file has the same id.
  const formats::DesktopEntry* byPath(std::string_view path) const;
  /// Compares ids without regard to case; the entry that was read first counts.
  const formats::DesktopEntry* byIDIgnoringCase(std::string_view id) const;
  /// Finds an entry by the last dotted piece of its id, without regard to case: "viewer" finds
  /// "org.example.Viewer". Null when two entries claim it and none or both are visible.
  const formats::DesktopEntry* byLastPiece(std::string_view piece) const;
  /// Finds an entry by its exact StartupWMClass. Null as for `byLastPiece`.
  const formats::DesktopEntry* byStartupWMClass(std::string_view wmClass) const;
  /// The one visible entry that starts the program file at `realPath`, an interpreter's script included. Null
  /// when none or several do.
  const formats::DesktopEntry* byProgram(std::string_view realPath) const;

  /// The one visible entry that starts this program file without arguments: the program as such, and not one
  /// of its parts. Null when none or several do.
  const formats::DesktopEntry* byPlainProgram(std::string_view realPath) const;
  /// The program file that a visible entry starts, without links; for an interpreter, its script. Empty when
  /// there is none.
  std::string_view programOf(const formats::DesktopEntry& entry) const;

  /// The one visible entry that starts a script in the folder at `realPath`. An entry without arguments comes
  /// before the others. Null when none or several do. Reads the first bytes of one file.
  const formats::DesktopEntry* byScriptIn(std::string_view realPath) const;

  /// The one visible entry whose program lies in the folder at `realPath`, at any depth, or whose snap or
  /// flatpak is kept there. Null when none or several do.
  const formats::DesktopEntry* onlyOneInFolder(std::string_view realPath) const;

  std::size_t size() const { return entries_.size(); }

  /// Sets the handler that is called on the main thread after the index was read again. Earlier pointers are
  /// then invalid.
  void setChangeHandler(std::function<void()> handler) { changed_ = std::move(handler); }

 private:
  using Claims = std::unordered_map<std::string, const formats::DesktopEntry*>;

  void read();
  void readFolder(const std::string& folder, const std::string& idPrefix, int depth);
  void add(formats::DesktopEntry entry);
  void indexEntries();
  void indexProgram(const formats::DesktopEntry& entry);
  bool isShownHere(const formats::DesktopEntry& entry) const;
  void watch(const std::string& folder);
  void changeSeen();
  bool isChangeOfEntries(int watch, std::uint32_t mask, std::string_view name) const;

  Scheduler& scheduler_;
  const Places places_;
  std::unordered_map<std::string, formats::DesktopEntry> entries_;
  std::vector<std::string> order_;
  std::set<std::pair<std::uint64_t, std::uint64_t>> readFolders_;  // device and inode
  Claims byPath_, byLowerID_, byLastPiece_, byClass_, byProgram_, byPlainProgram_, byFolder_;
  Claims startedIn_, plainlyStartedIn_;                                      // by the folder of the program
  std::unordered_map<const formats::DesktopEntry*, std::string> programOf_;  // without links
  std::function<void()> changed_;
  int inotify_ = -1;
  std::set<int> folders_;  // watches of folders that exist
  std::map<int, std::set<std::string, std::less<>>>
      awaited_;  // watches of ancestors, and the names that are awaited there
  std::unique_ptr<QSocketNotifier> notifier_;
  Scheduler::TimerId rereadTimer_ = 0;
};

}  // namespace vorli::linuxhost
