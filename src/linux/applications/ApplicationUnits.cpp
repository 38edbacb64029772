#include "linux/applications/ApplicationUnits.h"

#include "linux/applications/ControlGroup.h"

#include <QSocketNotifier>
#include <dirent.h>
#include <sys/inotify.h>
#include <unistd.h>
#include <vector>

namespace vorli::linuxhost {
namespace {

bool isUnitOfApplication(std::string_view name) {
  return (name.starts_with("app-") || name.starts_with("snap.")) &&
         (name.ends_with(".scope") || name.ends_with(".service"));
}

// True for a slice; some desktops group their applications in slices inside app.slice.
bool isSlice(std::string_view name) {
  return name.ends_with(".slice");
}

}  // namespace

std::string ApplicationUnits::sliceOfThisUser() {
  const auto user = std::to_string(getuid());
  return "/sys/fs/cgroup/user.slice/user-" + user + ".slice/user@" + user + ".service/app.slice";
}

ApplicationUnits::ApplicationUnits(std::string slice, std::function<void(std::int32_t)> started,
                                   std::string root)
    : slice_(std::move(slice)),
      started_(std::move(started)),
      root_(std::move(root)),
      inotify_(inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {
  if (inotify_ < 0) return;
  notifier_ = std::make_unique<QSocketNotifier>(inotify_, QSocketNotifier::Read);
  QObject::connect(notifier_.get(), &QSocketNotifier::activated, [this] { readEvents(); });
  parent_ = inotify_add_watch(inotify_, slice_.substr(0, slice_.rfind('/')).c_str(), IN_CREATE | IN_ONLYDIR);
  readFolder(slice_);
}

ApplicationUnits::~ApplicationUnits() {
  notifier_.reset();
  if (inotify_ >= 0) close(inotify_);
}

// Starts the watch before the listing, so that no unit is missed in between.
void ApplicationUnits::readFolder(const std::string& folder) {
  const int watch = inotify_add_watch(inotify_, folder.c_str(), IN_CREATE | IN_ONLYDIR);
  if (watch < 0) return;
  folders_[watch] = folder;
  DIR* listing = opendir(folder.c_str());
  if (!listing) return;
  while (const dirent* item = readdir(listing)) meet(folder, item->d_name);
  closedir(listing);
}

void ApplicationUnits::meet(const std::string& folder, std::string_view name) {
  const auto path = folder + "/" + std::string(name);
  if (isSlice(name)) return readFolder(path);
  if (isUnitOfApplication(name)) lookInto(path);
}

// A new unit is empty for some milliseconds; its events file changes with its first process. The watch starts
// before the check, so that the change is not missed.
void ApplicationUnits::lookInto(const std::string& unit) {
  const int watch = inotify_add_watch(inotify_, (unit + "/cgroup.events").c_str(), IN_MODIFY);
  const auto pid = oldestMember(unit, root_);
  if (pid == 0) {
    if (watch >= 0) empty_[watch] = unit;
    return;
  }
  if (watch >= 0) {
    empty_.erase(watch);
    inotify_rm_watch(inotify_, watch);
  }
  started_(pid);
}

void ApplicationUnits::readEvents() {
  alignas(inotify_event) char events[4096];
  for (ssize_t got; (got = read(inotify_, events, sizeof events)) > 0;) {
    for (const char* at = events; at < events + got;) {
      const auto* event = reinterpret_cast<const inotify_event*>(at);
      at += sizeof(inotify_event) + event->len;
      readEvent(event->wd, event->mask, event->len > 0 ? event->name : "");
    }
  }
}

void ApplicationUnits::readEvent(int watch, std::uint32_t mask, const char* name) {
  if ((mask & IN_Q_OVERFLOW) != 0) {
    readFolder(slice_);
  } else if ((mask & IN_IGNORED) != 0) {
    folders_.erase(watch);
    empty_.erase(watch);
  } else if (watch == parent_) {
    if (slice_.ends_with("/" + std::string(name))) readFolder(slice_);
  } else if (const auto folder = folders_.find(watch); folder != folders_.end() && *name) {
    meet(std::string(folder->second), name);
  } else if (const auto unit = empty_.find(watch); unit != empty_.end()) {
    lookInto(std::string(unit->second));
  }
}

}  // namespace vorli::linuxhost
