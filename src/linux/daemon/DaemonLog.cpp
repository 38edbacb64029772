#include "linux/daemon/DaemonLog.h"

#include <cstring>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace vorli::linuxhost {

namespace {

constexpr int authorisationFacility = 10 << 3;
constexpr char logSocketPath[] = "/dev/log";

bool isStandardError(const std::string& journalStream) {
  struct stat status {};
  if (journalStream.empty() || ::fstat(STDERR_FILENO, &status) != 0) return false;
  return journalStream == std::to_string(status.st_dev) + ":" + std::to_string(status.st_ino);
}

FileDescriptor connectToLogSocket() {
  FileDescriptor socket(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0));
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  std::memcpy(address.sun_path, logSocketPath, sizeof logSocketPath);
  if (!socket || ::connect(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
    return FileDescriptor();
  return socket;
}

}  // namespace

DaemonLog::DaemonLog(const StartContext& context) {
  if (isStandardError(context.journalStream)) {
    target_ = Target::journalStream;
  } else if (socket_ = connectToLogSocket(); socket_) {
    target_ = Target::logSocket;
  }
}

void DaemonLog::write(Level level, const std::string& line) {
  if (lost_ > 0 && send(Level::warning, std::to_string(lost_) + " lines lost")) lost_ = 0;
  if (!send(level, line)) ++lost_;
}

bool DaemonLog::send(Level level, const std::string& line) {
  const int priority = static_cast<int>(level);
  switch (target_) {
    case Target::journalStream: {
      const auto text = "<" + std::to_string(priority) + ">" + line + "\n";
      return ::send(STDERR_FILENO, text.data(), text.size(), MSG_DONTWAIT | MSG_NOSIGNAL) >= 0;
    }
    case Target::logSocket: {
      const auto text = "<" + std::to_string(authorisationFacility | priority) + ">vorli-helper[" +
                        std::to_string(::getpid()) + "]: " + line;
      return ::send(socket_.get(), text.data(), text.size(), MSG_DONTWAIT | MSG_NOSIGNAL) >= 0;
    }
    case Target::standardError: {
      const auto text = "vorli-helper[" + std::to_string(::getpid()) + "]: " + line + "\n";
      return ::write(STDERR_FILENO, text.data(), text.size()) >= 0;
    }
  }
  return false;
}

}  // namespace vorli::linuxhost
