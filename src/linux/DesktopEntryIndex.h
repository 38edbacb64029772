#pragma once

#include "base/Scheduler.h"
#include "linux/DesktopEntry.h"

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

/// All desktop entries of this user, by id and by what they start. Reads the folders once and again when
/// inotify tells of a change; a burst of changes, as a package upgrade makes them, is one reading. Main
/// thread.
class DesktopEntryIndex {
 public:
  /// Folders of entries, the most important first: an id found in an earlier one hides the same id in a later
  /// one.
  struct Places {
    std::vector<std::string> folders;
    std::vector<std::string> programPath;  // where a program named without a slash is searched
    std::vector<std::string> locales;

    /// The user's own folder, the flatpak exports, XDG_DATA_DIRS, snap's; PATH; LC_MESSAGES.
    static Places ofThisUser();
  };

  DesktopEntryIndex(Scheduler& scheduler, Places places);
  ~DesktopEntryIndex();

  /// Null when there is none, or it is hidden.
  const DesktopEntry* byID(std::string_view id) const;
  /// Ids are compared without regard to case; the first of the index's order counts.
  const DesktopEntry* byIDIgnoringCase(std::string_view id) const;
  /// By the last dotted piece of the id, lower case: "org.example.Viewer" for "viewer". Null when two entries
  /// claim it and none or both are visible.
  const DesktopEntry* byLastPiece(std::string_view piece) const;
  /// Exact in case. Null as above.
  const DesktopEntry* byStartupWMClass(std::string_view wmClass) const;
  /// The one visible entry that starts the program file at `realPath`, an interpreter's script included. Null
  /// when none or several do.
  const DesktopEntry* byProgram(std::string_view realPath) const;

  /// The one visible entry whose program lies in the folder at `realPath`, at any depth, or whose snap or
  /// flatpak is kept there. Null when none or several do.
  const DesktopEntry* onlyOneInFolder(std::string_view realPath) const;

  std::size_t size() const { return entries_.size(); }

  /// Called on the main thread after the index was read anew; pointers from before are gone then.
  void setChangeHandler(std::function<void()> handler) { changed_ = std::move(handler); }

 private:
  using Claims = std::unordered_map<std::string, const DesktopEntry*>;

  void read();
  void readFolder(const std::string& folder, const std::string& idPrefix, int depth);
  void add(DesktopEntry entry);
  void indexEntries();
  void watch(const std::string& folder);
  void changeSeen();
  bool isChangeOfEntries(int watch, std::uint32_t mask, std::string_view name) const;

  Scheduler& scheduler_;
  const Places places_;
  std::unordered_map<std::string, DesktopEntry> entries_;
  std::vector<std::string> order_;
  std::set<std::pair<std::uint64_t, std::uint64_t>> readFolders_;  // device and inode
  Claims byLowerID_, byLastPiece_, byClass_, byProgram_, byFolder_;
  std::function<void()> changed_;
  int inotify_ = -1;
  std::set<int> folders_;  // watches of folders that exist
  std::map<int, std::set<std::string, std::less<>>>
      awaited_;  // watches of ancestors, and what is missing there
  std::unique_ptr<QSocketNotifier> notifier_;
  Scheduler::TimerId rereadTimer_ = 0;
};

/// True for programs that run other programs: what they were given to run says who a process is.
bool isInterpreter(std::string_view programPath);

}  // namespace vorli::linuxhost
