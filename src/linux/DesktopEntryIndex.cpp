#include "linux/DesktopEntryIndex.h"

#include <QSocketNotifier>
#include <algorithm>
#include <array>
#include <cctype>
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
// Folders inside folders are rare, and a loop of links must end.
constexpr int deepestFolder = 4;

std::string lowered(std::string_view text) {
  std::string result(text);
  std::transform(result.begin(), result.end(), result.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return result;
}

std::vector<std::string> split(const char* text, const char* otherwise) {
  std::vector<std::string> parts;
  std::string_view rest = text && *text ? text : otherwise;
  while (!rest.empty()) {
    const auto colon = rest.find(':');
    if (const auto part = rest.substr(0, colon); part.starts_with('/')) parts.emplace_back(part);
    rest.remove_prefix(colon == std::string_view::npos ? rest.size() : colon + 1);
  }
  return parts;
}

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

// What the entry's process will be: of an interpreter what it is given to run.
std::string startedProgram(const DesktopEntry& entry, const std::vector<std::string>& programPath) {
  auto program = resolvedProgram(entry.program, programPath);
  if (!isInterpreter(program)) return program;
  const auto script =
      std::ranges::find_if(entry.arguments, [](const auto& word) { return !word.starts_with('-'); });
  return script == entry.arguments.end() ? std::string() : resolvedProgram(*script, programPath);
}

// Empty for anything but a plain file of a sensible size. Never waits: a FIFO is opened without blocking, and
// left.
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

// A claim of two different entries is no claim.
void claim(std::unordered_map<std::string, const DesktopEntry*>& claims, std::string key,
           const DesktopEntry* entry) {
  if (key.empty()) return;
  const auto [slot, isFirst] = claims.emplace(std::move(key), entry);
  if (!isFirst && slot->second != entry) slot->second = nullptr;
}

// Where a snap or flatpak keeps its files: what its entry starts is a launcher outside of them.
std::vector<std::string> sandboxFolders(const DesktopEntry& entry) {
  constexpr std::string_view snapLaunchers = "/snap/bin/";
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

const DesktopEntry* find(const std::unordered_map<std::string, const DesktopEntry*>& claims,
                         const std::string& key) {
  const auto found = claims.find(key);
  return found == claims.end() ? nullptr : found->second;
}

}  // namespace

// Told by the whole name, save for a version behind it: an application's own program may begin like one.
bool isInterpreter(std::string_view programPath) {
  using namespace std::string_view_literals;
  static constexpr std::array names{
      "sh"sv,
      "bash"sv,
      "dash"sv,
      "fish"sv,
      "zsh"sv,
      "python"sv,
      "perl"sv,
      "ruby"sv,
      "php"sv,
      "lua"sv,
      "luajit"sv,
      "tclsh"sv,
      "wish"sv,
      "guile"sv,
      "node"sv,
      "nodejs"sv,
      "electron"sv,
      "deno"sv,
      "bun"sv,
      "java"sv,
      "gjs"sv,
      "gjs-console"sv,
      "qml"sv,
      "mono"sv,
      "wine"sv,
      "dotnet"sv,
      "wine-preloader"sv,
      "wine64-preloader"sv,
      "mono-sgen"sv,
      "mono-boehm"sv,
  };
  auto name = programPath.substr(programPath.rfind('/') + 1);
  while (!name.empty() && (name.back() == '.' || (name.back() >= '0' && name.back() <= '9')))
    name.remove_suffix(1);
  return std::ranges::find(names, name) != names.end();
}

DesktopEntryIndex::Places DesktopEntryIndex::Places::ofThisUser() {
  const char* home = std::getenv("HOME");
  const std::string homeFolder = home ? home : "";
  const char* dataHome = std::getenv("XDG_DATA_HOME");
  const std::string own = dataHome && *dataHome == '/' ? dataHome : homeFolder + "/.local/share";

  Places places;
  places.folders = {own + "/applications", own + "/flatpak/exports/share/applications"};
  for (const auto& folder : split(std::getenv("XDG_DATA_DIRS"), "/usr/local/share:/usr/share")) {
    places.folders.push_back(folder + "/applications");
  }
  for (const char* folder :
       {"/var/lib/flatpak/exports/share/applications", "/var/lib/snapd/desktop/applications"}) {
    if (std::find(places.folders.begin(), places.folders.end(), folder) == places.folders.end()) {
      places.folders.emplace_back(folder);
    }
  }
  places.programPath = split(std::getenv("PATH"), "/usr/local/bin:/usr/bin:/bin");
  for (const char* variable : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
    if (const char* locale = std::getenv(variable); locale && *locale) {
      places.locales = localeKeys(locale);
      break;
    }
  }
  return places;
}

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

// Lists of file types and files of other programs come and go in these folders all the time.
bool DesktopEntryIndex::isChangeOfEntries(int watch, std::uint32_t mask, std::string_view name) const {
  if ((mask & IN_Q_OVERFLOW) != 0) return true;
  if (const auto awaited = awaited_.find(watch); awaited != awaited_.end() && awaited->second.contains(name))
    return true;
  return folders_.contains(watch) && (name.empty() || (mask & IN_ISDIR) != 0 || name.ends_with(entrySuffix));
}

// A folder that does not exist yet is noticed when its nearest ancestor gets the first missing piece.
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
                                           IN_CREATE | IN_MOVED_TO | IN_ONLYDIR | IN_MASK_ADD);
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
    closedir(listing);  // reached once more by a link
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
    auto entry = parseDesktopEntry(*text, places_.locales);
    if (!entry) continue;
    entry->id = id;
    entry->path = folder + "/" + name;
    add(std::move(*entry));
  }
  closedir(listing);
}

// A hidden entry is kept so that it hides the same id of the folders behind.
void DesktopEntryIndex::add(DesktopEntry entry) {
  order_.push_back(entry.id);
  entries_.emplace(entry.id, std::move(entry));
}

// What a launcher shows counts before what it does not: a handler of links often shares its application's
// names.
void DesktopEntryIndex::indexEntries() {
  Claims quietPieces, quietClasses;
  for (auto* claims : {&byLowerID_, &byLastPiece_, &byClass_, &byProgram_, &byFolder_}) claims->clear();
  for (const auto& id : order_) {
    const DesktopEntry& entry = entries_.at(id);
    if (entry.hidden) continue;
    byLowerID_.emplace(lowered(id), &entry);
    const bool isQuiet = !entry.isVisible();
    claim(isQuiet ? quietPieces : byLastPiece_, lowered(id.substr(id.rfind('.') + 1)), &entry);
    claim(isQuiet ? quietClasses : byClass_, entry.startupWMClass, &entry);
    if (isQuiet) continue;
    claim(byProgram_, startedProgram(entry, places_.programPath), &entry);
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

const DesktopEntry* DesktopEntryIndex::byID(std::string_view id) const {
  const auto found = entries_.find(std::string(id));
  return found == entries_.end() || found->second.hidden ? nullptr : &found->second;
}

const DesktopEntry* DesktopEntryIndex::byIDIgnoringCase(std::string_view id) const {
  return find(byLowerID_, lowered(id));
}
const DesktopEntry* DesktopEntryIndex::byLastPiece(std::string_view piece) const {
  return find(byLastPiece_, lowered(piece));
}
const DesktopEntry* DesktopEntryIndex::byStartupWMClass(std::string_view wmClass) const {
  return find(byClass_, std::string(wmClass));
}
const DesktopEntry* DesktopEntryIndex::byProgram(std::string_view realPath) const {
  return find(byProgram_, std::string(realPath));
}

const DesktopEntry* DesktopEntryIndex::onlyOneInFolder(std::string_view realPath) const {
  return find(byFolder_, std::string(realPath));
}

}  // namespace vorli::linuxhost
