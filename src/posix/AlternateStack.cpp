#include "posix/AlternateStack.h"

#include <algorithm>
#include <csignal>
#include <sys/mman.h>
#include <unistd.h>

namespace vorli::posix {

namespace {

// Room for the unwinder and the registers of a processor with wide vectors.
constexpr std::size_t stackBytes = 128 * 1024;

}  // namespace

AlternateStack::AlternateStack() {
  stack_t present{};
  if (sigaltstack(nullptr, &present) == 0 && !(present.ss_flags & SS_DISABLE)) return;
  const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
  const auto usable = std::max(stackBytes, static_cast<std::size_t>(4 * SIGSTKSZ));
  bytes_ = (usable + page - 1) / page * page + page;
  memory_ = mmap(nullptr, bytes_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (memory_ == MAP_FAILED) {
    memory_ = nullptr;
    return;
  }
  mprotect(memory_, page, PROT_NONE);
  stack_t stack{};
  stack.ss_sp = static_cast<char*>(memory_) + page;
  stack.ss_size = bytes_ - page;
  sigaltstack(&stack, nullptr);
}

AlternateStack::~AlternateStack() {
  if (!memory_) return;
  stack_t none{};
  none.ss_flags = SS_DISABLE;
  sigaltstack(&none, nullptr);
  munmap(memory_, bytes_);
}

}  // namespace vorli::posix
