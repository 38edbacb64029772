#include "linux/daemon/BinaryWatch.h"

#include <climits>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

namespace vorli::linuxhost {

namespace {

constexpr char ownFile[] = "/proc/self/exe";

std::string ownPath() {
  char path[PATH_MAX];
  const auto size = ::readlink(ownFile, path, sizeof path);
  return size > 0 ? std::string(path, static_cast<std::size_t>(size)) : std::string();
}

}  // namespace

BinaryWatch::BinaryWatch() : path_(ownPath()), watch_(::inotify_init1(IN_CLOEXEC | IN_NONBLOCK)) {
  // Replacing the file by rename lowers its link count, which is a change of its attributes.
  if (watch_ && ::inotify_add_watch(watch_.get(), ownFile, IN_ATTRIB | IN_MOVE_SELF | IN_DELETE_SELF) < 0)
    watch_ = posix::FileDescriptor();
}

bool BinaryWatch::isReplaced() {
  char events[4096];
  while (::read(watch_.get(), events, sizeof events) > 0) {
  }
  struct stat running {
  }, named{};
  if (::stat(ownFile, &running) != 0) return false;
  if (::stat(path_.c_str(), &named) != 0) return true;
  return running.st_dev != named.st_dev || running.st_ino != named.st_ino;
}

}  // namespace vorli::linuxhost
