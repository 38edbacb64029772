#pragma once

#include <csignal>
#include <string>
#include <sys/types.h>
#include <vector>

namespace vorli {

/// A program that a test started. It is killed, even if it is stopped, when the object is destroyed.
class ChildProcess {
 public:
  ChildProcess() = default;
  /// Starts the command and writes its output to the file `output`.
  ChildProcess(const std::vector<std::string>& command, const std::string& output);
  ~ChildProcess() { end(); }
  ChildProcess(ChildProcess&& other) noexcept;
  ChildProcess& operator=(ChildProcess&& other) noexcept;

  pid_t pid() const { return pid_; }
  void stop() const { send(SIGSTOP); }
  void carryOn() const { send(SIGCONT); }
  void end();

 private:
  // A program that could not be started has no pid, and -1 would mean all processes.
  void send(int signal) const {
    if (pid_ > 0) ::kill(pid_, signal);
  }

  pid_t pid_ = -1;
};

}  // namespace vorli
