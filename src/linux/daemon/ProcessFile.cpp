#include "linux/daemon/ProcessFile.h"

#include "posix/FileDescriptor.h"

#include <cstdio>
#include <fcntl.h>

namespace vorli::linuxhost::process_file {

namespace {

std::string contentOf(std::int32_t pid, const char* name) {
  const auto path = "/proc/" + std::to_string(pid) + "/" + name;
  const posix::FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
  char text[4096];
  const auto size = file ? ::read(file.get(), text, sizeof text) : 0;
  return size > 0 ? std::string(text, static_cast<std::size_t>(size)) : std::string();
}

}  // namespace

std::optional<std::array<std::uint32_t, 4>> usersOf(std::int32_t pid) {
  const auto status = contentOf(pid, "status");
  // The name of the process comes earlier in the file and cannot contain a line feed.
  const auto line = status.find("\nUid:");
  if (line == std::string::npos) return std::nullopt;
  std::array<std::uint32_t, 4> users{};
  const int found =
      std::sscanf(status.c_str() + line, "\nUid: %u %u %u %u", &users[0], &users[1], &users[2], &users[3]);
  if (found != 4) return std::nullopt;
  return users;
}

std::string commandOf(std::int32_t pid) {
  auto command = contentOf(pid, "comm");
  if (command.ends_with('\n')) command.pop_back();
  return command;
}

}  // namespace vorli::linuxhost::process_file
