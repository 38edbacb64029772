#include "linux/applications/DesktopEntryIndex.h"

#include "base/UnicodeText.h"
#include "linux/applications/Interpreter.h"
#include "linux/kernel/SmallFile.h"

#include <QSocketNotifier>
#include <algorithm>
#include <climits>
#include <cstdlib>
#include <dirent.h>
#include <fcntl.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

namespace vorli::linuxhost {

namespace {

constexpr std::string_view entrySuffix = ".desktop";
// A burst of changes is over when the folders have been quiet for this long.
constexpr double quietSeconds = 0.5;
// Entries of real programs, all translations included, stay under 200 kB.
constexpr off_t largestEntryBytes = 1024 * 1024;
// Nested folders are rare, and a loop of links must end.
constexpr int deepestFolder = 4;

std::string realPathOf(const std::string& path) {
  char resolved[PATH_MAX];
  return realpath(path.c_str(), resolved) ? resolved : std::string();
}

// The entry's program as an absolute path without links; empty when there is no such file.
std::string resolvedProgram(const std::string& program, const std::vector<std::string>& programPath) {
  if (program.empty()) return {};
  if (program.find('/') != std::string::npos) return realPathOf(program);
  for (const auto& folder : programPath) {
    const std::string candidate = folder + "/" + program;
    if (access(candidate.c_str(), X_OK) == 0) return realPathOf(candidate);
  }
  return {};
}

constexpr std::string_view snapLaunchers = "/snap/bin/";

// All sandboxes share their launcher, which therefore identifies none of them.
bool startsSandbox(const formats::DesktopEntry& entry) {
  return !entry.flatpakID.empty() || entry.program.find(snapLaunchers) != std::string::npos;
}

// Program by which the entry's process is recognised: for an interpreter, the script that it runs.
std::string startedProgram(const formats::DesktopEntry& entry, const std::vector<std::string>& programPath) {
  if (startsSandbox(entry)) return {};
  auto program = resolvedProgram(entry.program, programPath);
  if (!isInterpreter(program)) return program;
  const auto script =
      std::ranges::find_if(entry.arguments, [](const auto& word) { return !word.starts_with('-'); });
  return script == entry.arguments.end() ? std::string() : resolvedProgram(*script, programPath);
}

// Reads a plain file of a sensible size; empty for anything else. Never waits: a FIFO is opened without
// blocking and not read.
std::optional<std::string> readPlainFile(int folder, const char* name) {
  const int file = openat(folder, name, O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY);
  if (file < 0) return std::nullopt;
  std::optional<std::string> text;
  struct stat info {};
  if (fstat(file, &info) == 0 && S_ISREG(info.st_mode) && info.st_size <= largestEntryBytes) {
    text.emplace(static_cast<std::size_t>(info.st_size), '\0');
    const ssize_t got = read(file, text->data(), text->size());
    text->resize(static_cast<std::size_t>(std::max<ssize_t>(got, 0)));
  }
  close(file);
  return text;
}

// A key that two different entries claim belongs to neither.
void claim(std::unordered_map<std::string, const formats::DesktopEntry*>& claims, std::string key,
           const formats::DesktopEntry* entry) {
  if (key.empty()) return;
  const auto [slot, isFirst] = claims.emplace(std::move(key), entry);
  if (!isFirst && slot->second != entry) slot->second = nullptr;
}

// Folders where a snap or flatpak keeps its files. Its entry starts a launcher outside of them.
std::vector<std::string> sandboxFolders(const formats::DesktopEntry& entry) {
  constexpr std::string_view flatpakExports = "/exports/share/applications/";
  std::vector<std::string> folders;
  if (const auto at = entry.program.find(snapLaunchers); at != std::string::npos) {
    const auto package = entry.program.substr(at + snapLaunchers.size());
    folders.push_back("/snap/" + package.substr(0, package.find('.')));
    folders.push_back("/var/lib/snapd/snap/" + package.substr(0, package.find('.')));
  }
  const auto exports = entry.path.find(flatpakExports);
  if (!entry.flatpakID.empty() && exports != std::string::npos) {
    folders.push_back(entry.path.substr(0, exports) + "/app/" + entry.flatpakID);
  }
  return folders;
}

bool isScript(const std::string& path) {
  return readSmallFile(path, 2) == "#!";
}

std::string folderOf(const std::string& path) {
  return path.substr(0, path.rfind('/'));
}

const formats::DesktopEntry* find(const std::unordered_map<std::string, const formats::DesktopEntry*>& claims,
                                  const std::string& key) {
  const auto found = claims.find(key);
  return found == claims.end() ? nullptr : found->second;
}

}  // namespace

DesktopEntryIndex::DesktopEntryIndex(Scheduler& scheduler, Places places)
    : scheduler_(scheduler), places_(std::move(places)), inotify_(inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {
  if (inotify_ >= 0) {
    notifier_ = std::make_unique<QSocketNotifier>(inotify_, QSocketNotifier::Read);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, [this] { changeSeen(); });
  }
  read();
}

DesktopEntryIndex::~DesktopEntryIndex() {
  scheduler_.cancel(rereadTimer_);
  notifier_.reset();
  if (inotify_ >= 0) close(inotify_);
}

void DesktopEntryIndex::changeSeen() {
  alignas(inotify_event) char events[4096];
  bool matters = false;
  for (ssize_t got; (got = ::read(inotify_, events, sizeof events)) > 0;) {
    for (const char* at = events; at < events + got;) {
      const auto* event = reinterpret_cast<const inotify_event*>(at);
      matters |= isChangeOfEntries(event->wd, event->mask, event->len > 0 ? event->name : "");
      at += sizeof(inotify_event) + event->len;
    }
  }
  if (!matters) return;
  scheduler_.cancel(rereadTimer_);
  rereadTimer_ = scheduler_.after(quietSeconds, [this] {
    read();
    if (changed_) changed_();
  });
}

// Ignores lists of file types and files of other programs, which change in these folders all the time.
bool DesktopEntryIndex::isChangeOfEntries(int watch, std::uint32_t mask, std::string_view name) const {
  if ((mask & IN_Q_OVERFLOW) != 0) return true;
  const auto awaited = awaited_.find(watch);
  // An event without a name is about the watched folder itself, which was moved or removed.
  if (awaited != awaited_.end() && (name.empty() || awaited->second.contains(name))) return true;
  return folders_.contains(watch) && (name.empty() || (mask & IN_ISDIR) != 0 || name.ends_with(entrySuffix));
}

// A folder that does not exist yet is noticed when its first missing component is created in the nearest
// ancestor.
void DesktopEntryIndex::watch(const std::string& folder) {
  if (inotify_ < 0) return;
  constexpr auto changes =
      IN_CLOSE_WRITE | IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO | IN_DELETE_SELF | IN_MOVE_SELF;
  const int whole = inotify_add_watch(inotify_, folder.c_str(), changes | IN_ONLYDIR | IN_MASK_ADD);
  if (whole >= 0) {
    folders_.insert(whole);
    return;
  }
  for (auto slash = folder.rfind('/'); slash != 0 && slash != std::string::npos;
       slash = folder.rfind('/', slash - 1)) {
    const int ancestor = inotify_add_watch(inotify_, folder.substr(0, slash).c_str(),
                                           IN_CREATE | IN_MOVED_TO | IN_MOVE_SELF | IN_ONLYDIR | IN_MASK_ADD);
    if (ancestor < 0) continue;
    awaited_[ancestor].insert(folder.substr(slash + 1, folder.find('/', slash + 1) - slash - 1));
    return;
  }
}

void DesktopEntryIndex::read() {
  entries_.clear();
  order_.clear();
  readFolders_.clear();
  folders_.clear();
  awaited_.clear();
  for (const auto& folder : places_.folders) readFolder(folder, "", 0);
  indexEntries();
}

void DesktopEntryIndex::readFolder(const std::string& folder, const std::string& idPrefix, int depth) {
  watch(folder);
  DIR* listing = opendir(folder.c_str());
  if (!listing) return;
  struct stat self {};
  if (fstat(dirfd(listing), &self) != 0 || !readFolders_.emplace(self.st_dev, self.st_ino).second) {
    closedir(listing);  // reached again through a link
    return;
  }
  while (const dirent* item = readdir(listing)) {
    const std::string name = item->d_name;
    if (name.starts_with('.')) continue;
    if (!name.ends_with(entrySuffix)) {
      struct stat info {};
      const bool isFolder = fstatat(dirfd(listing), name.c_str(), &info, 0) == 0 && S_ISDIR(info.st_mode);
      if (isFolder && depth < deepestFolder)
        readFolder(folder + "/" + name, idPrefix + name + "-", depth + 1);
      continue;
    }
    const std::string id = idPrefix + name.substr(0, name.size() - entrySuffix.size());
    if (entries_.contains(id)) continue;
    const auto text = readPlainFile(dirfd(listing), name.c_str());
    if (!text) continue;
    auto entry = formats::parseDesktopEntry(*text, places_.locales);
    if (!entry) continue;
    entry->id = id;
    entry->path = folder + "/" + name;
    add(std::move(*entry));
  }
  closedir(listing);
}

// A hidden entry is kept so that it hides the same id in later folders.
void DesktopEntryIndex::add(formats::DesktopEntry entry) {
  order_.push_back(entry.id);
  entries_.emplace(entry.id, std::move(entry));
}

// Entries that a launcher shows take precedence over those that it does not: a handler of links often has the
// same names as its application.
void DesktopEntryIndex::indexEntries() {
  Claims quietPieces, quietClasses;
  programOf_.clear();
  for (auto* claims : {&byPath_, &byLowerID_, &byLastPiece_, &byClass_, &byProgram_, &byPlainProgram_,
                       &byFolder_, &startedIn_, &plainlyStartedIn_}) {
    claims->clear();
  }
  for (const auto& id : order_) {
    const formats::DesktopEntry& entry = entries_.at(id);
    if (entry.hidden) continue;
    byPath_.emplace(entry.path, &entry);
    byLowerID_.emplace(lowercased(id), &entry);
    const bool isQuiet = !entry.isVisible() || !isShownHere(entry);
    claim(isQuiet ? quietPieces : byLastPiece_, lowercased(id.substr(id.rfind('.') + 1)), &entry);
    claim(isQuiet ? quietClasses : byClass_, entry.startupWMClass, &entry);
    if (isQuiet) continue;
    indexProgram(entry);
    for (auto& folder : sandboxFolders(entry)) claim(byFolder_, std::move(folder), &entry);
  }
  byLastPiece_.merge(quietPieces);
  byClass_.merge(quietClasses);
  for (const auto& [program, entry] : byProgram_) {
    for (auto slash = program.rfind('/'); slash != 0 && slash != std::string::npos;
         slash = program.rfind('/', slash - 1)) {
      claim(byFolder_, program.substr(0, slash), entry);
    }
  }
}

void DesktopEntryIndex::indexProgram(const formats::DesktopEntry& entry) {
  const auto program = startedProgram(entry, places_.programPath);
  if (program.empty()) return;
  programOf_[&entry] = program;
  claim(byProgram_, program, &entry);
  claim(startedIn_, folderOf(program), &entry);
  if (!entry.arguments.empty()) return;
  claim(byPlainProgram_, program, &entry);
  claim(plainlyStartedIn_, folderOf(program), &entry);
}

// An entry for another desktop, or whose program is not installed, often has a twin that is shown here.
bool DesktopEntryIndex::isShownHere(const formats::DesktopEntry& entry) const {
  if (!places_.desktops.empty() && !entry.isFor(places_.desktops)) return false;
  return entry.tryExec.empty() || !resolvedProgram(entry.tryExec, places_.programPath).empty();
}

const formats::DesktopEntry* DesktopEntryIndex::byID(std::string_view id) const {
  const auto found = entries_.find(std::string(id));
  return found == entries_.end() || found->second.hidden ? nullptr : &found->second;
}

const formats::DesktopEntry* DesktopEntryIndex::byPath(std::string_view path) const {
  return find(byPath_, std::string(path));
}
const formats::DesktopEntry* DesktopEntryIndex::byIDIgnoringCase(std::string_view id) const {
  return find(byLowerID_, lowercased(id));
}
const formats::DesktopEntry* DesktopEntryIndex::byLastPiece(std::string_view piece) const {
  return find(byLastPiece_, lowercased(piece));
}
const formats::DesktopEntry* DesktopEntryIndex::byStartupWMClass(std::string_view wmClass) const {
  return find(byClass_, std::string(wmClass));
}
const formats::DesktopEntry* DesktopEntryIndex::byProgram(std::string_view realPath) const {
  return find(byProgram_, std::string(realPath));
}
const formats::DesktopEntry* DesktopEntryIndex::byPlainProgram(std::string_view realPath) const {
  return find(byPlainProgram_, std::string(realPath));
}

std::string_view DesktopEntryIndex::programOf(const formats::DesktopEntry& entry) const {
  const auto found = programOf_.find(&entry);
  return found == programOf_.end() ? std::string_view() : found->second;
}

const formats::DesktopEntry* DesktopEntryIndex::byScriptIn(std::string_view realPath) const {
  for (const auto* claims : {&plainlyStartedIn_, &startedIn_}) {
    const auto* entry = find(*claims, std::string(realPath));
    if (entry && isScript(programOf_.at(entry))) return entry;
  }
  return nullptr;
}

const formats::DesktopEntry* DesktopEntryIndex::onlyOneInFolder(std::string_view realPath) const {
  return find(byFolder_, std::string(realPath));
}

}  // namespace vorli::linuxhost
