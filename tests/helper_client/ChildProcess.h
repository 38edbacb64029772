#pragma once

#include <csignal>
#include <string>
#include <sys/types.h>
#include <vector>

namespace vorli {

/// A program that a test started. Killed, stopped or not, when the test lets it go.
class ChildProcess {
 public:
  ChildProcess() = default;
  /// `output`: the file that takes what it prints.
  ChildProcess(const std::vector<std::string>& command, const std::string& output);
  ~ChildProcess() { end(); }
  ChildProcess(ChildProcess&& other) noexcept;
  ChildProcess& operator=(ChildProcess&& other) noexcept;

  pid_t pid() const { return pid_; }
  void stop() const { ::kill(pid_, SIGSTOP); }
  void carryOn() const { ::kill(pid_, SIGCONT); }
  void end();

 private:
  pid_t pid_ = -1;
};

}  // namespace vorli
