#include "linux/daemon/DaemonLog.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>
#include <utility>

namespace vorli::linuxhost {

namespace {

constexpr int authorisationFacility = 10 << 3;

bool isStandardError(const std::string& journalStream) {
  struct stat status {};
  if (journalStream.empty() || ::fstat(STDERR_FILENO, &status) != 0) return false;
  return journalStream == std::to_string(status.st_dev) + ":" + std::to_string(status.st_ino);
}

bool isSocket(int file) {
  struct stat status {};
  return ::fstat(file, &status) == 0 && S_ISSOCK(status.st_mode);
}

std::string ownName() {
  return "vorli-helper[" + std::to_string(::getpid()) + "]: ";
}

bool hasReaderGone(int error) {
  return error == ECONNREFUSED || error == ECONNRESET || error == ENOTCONN || error == EPIPE;
}

}  // namespace

DaemonLog::DaemonLog(const StartContext& context, std::string logSocketPath)
    : logSocketPath_(std::move(logSocketPath)) {
  if (isStandardError(context.journalStream)) {
    target_ = Target::journalStream;
  } else if (connectToLogSocket()) {
    target_ = Target::logSocket;
  } else if (isSocket(STDERR_FILENO)) {
    target_ = Target::standardErrorSocket;
  } else {
    standardError_ = posix::FileDescriptor(
        ::open("/proc/self/fd/2", O_WRONLY | O_APPEND | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
  }
}

void DaemonLog::write(Level level, const std::string& line) {
  if (lost_ > 0 && send(Level::warning, std::to_string(lost_) + " lines lost")) lost_ = 0;
  if (!send(level, line)) ++lost_;
}

// Connects again where sending fails: a restarted log service reads its socket, but not earlier connections.
bool DaemonLog::send(Level level, const std::string& line) {
  if (trySend(level, line)) return true;
  const bool isService = target_ == Target::journalStream || target_ == Target::logSocket;
  if (!isService || !hasReaderGone(errno) || !connectToLogSocket()) return false;
  target_ = Target::logSocket;
  return trySend(level, line);
}

bool DaemonLog::connectToLogSocket() {
  posix::FileDescriptor socket(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0));
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (!socket || logSocketPath_.size() >= sizeof address.sun_path) return false;
  std::memcpy(address.sun_path, logSocketPath_.c_str(), logSocketPath_.size() + 1);
  if (::connect(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) return false;
  socket_ = std::move(socket);
  return true;
}

bool DaemonLog::trySend(Level level, const std::string& line) const {
  const int priority = static_cast<int>(level);
  switch (target_) {
    case Target::journalStream: {
      const auto text = "<" + std::to_string(priority) + ">" + line + "\n";
      return ::send(STDERR_FILENO, text.data(), text.size(), MSG_DONTWAIT | MSG_NOSIGNAL) >= 0;
    }
    case Target::logSocket: {
      const auto text = "<" + std::to_string(authorisationFacility | priority) + ">" + ownName() + line;
      return ::send(socket_.get(), text.data(), text.size(), MSG_DONTWAIT | MSG_NOSIGNAL) >= 0;
    }
    case Target::standardErrorSocket: {
      const auto text = ownName() + line + "\n";
      return ::send(STDERR_FILENO, text.data(), text.size(), MSG_DONTWAIT | MSG_NOSIGNAL) >= 0;
    }
    case Target::standardError: {
      const auto text = ownName() + line + "\n";
      return ::write(standardError_.get(), text.data(), text.size()) >= 0;
    }
  }
  return false;
}

}  // namespace vorli::linuxhost
