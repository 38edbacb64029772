// vorli_crowd COUNT: starts COUNT sleeping children with one thread and 64 KiB of used memory each. Prints
// "ready" when all are running. All of them end when the input of this program ends.

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr std::size_t usedBytes = 64 * 1024;
constexpr std::size_t pageBytes = 4096;

[[noreturn]] void sleepAsChild(pid_t parent) {
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  if (getppid() != parent) _exit(0);  // the parent ended before the line above
  close(STDIN_FILENO);
  close(STDOUT_FILENO);
  auto* const memory = static_cast<volatile char*>(std::malloc(usedBytes));
  for (std::size_t i = 0; memory && i < usedBytes; i += pageBytes) memory[i] = 1;
  for (;;) pause();
}

}  // namespace

int main(int argc, char** argv) {
  const int count = argc == 2 ? std::atoi(argv[1]) : -1;
  if (count < 0) {
    std::fprintf(stderr, "vorli_crowd: COUNT\n");
    return 64;
  }
  const pid_t self = getpid();
  std::vector<pid_t> children;
  for (int i = 0; i < count; ++i) {
    const pid_t child = fork();
    if (child == 0) sleepAsChild(self);
    if (child < 0) {
      std::perror("vorli_crowd: fork");
      break;
    }
    children.push_back(child);
  }
  const bool isWhole = children.size() == static_cast<std::size_t>(count);
  if (isWhole) {
    std::puts("ready");
    std::fflush(stdout);
    char byte;
    while (read(STDIN_FILENO, &byte, 1) > 0) continue;
  }
  for (const pid_t child : children) kill(child, SIGKILL);
  for (const pid_t child : children) waitpid(child, nullptr, 0);
  return isWhole ? 0 : 1;
}
