#include "tests/linux/helper/ChildProcess.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

namespace vorli {

ChildProcess::ChildProcess(const std::vector<std::string>& command, const std::string& output) {
  std::vector<char*> arguments;
  for (const auto& word : command) arguments.push_back(const_cast<char*>(word.c_str()));
  arguments.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, output.c_str(), O_WRONLY | O_CREAT | O_APPEND,
                                   0600);
  posix_spawn_file_actions_adddup2(&actions, STDOUT_FILENO, STDERR_FILENO);
  if (posix_spawnp(&pid_, arguments[0], &actions, nullptr, arguments.data(), environ) != 0) pid_ = -1;
  posix_spawn_file_actions_destroy(&actions);
}

ChildProcess::ChildProcess(ChildProcess&& other) noexcept : pid_(std::exchange(other.pid_, -1)) {}

ChildProcess& ChildProcess::operator=(ChildProcess&& other) noexcept {
  if (this != &other) {
    end();
    pid_ = std::exchange(other.pid_, -1);
  }
  return *this;
}

void ChildProcess::end() {
  const pid_t pid = std::exchange(pid_, -1);
  if (pid <= 0) return;
  ::kill(pid, SIGKILL);
  waitpid(pid, nullptr, 0);
}

}  // namespace vorli
