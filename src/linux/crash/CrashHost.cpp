#include "linux/crash/CrashHost.h"

#include "linux/crash/FrameLines.h"
#include "linux/crash/LoadedModule.h"

#include <array>
#include <cstring>
#include <sys/uio.h>
#include <syslog.h>
#include <systemd/sd-journal.h>
#include <ucontext.h>
#include <unistd.h>

namespace vorli::linuxhost {

namespace {

bool hasJournal = false;

#if defined(__x86_64__)

std::uintptr_t interruptedAt(const void* context) {
  const auto& registers = static_cast<const ucontext_t*>(context)->uc_mcontext.gregs;
  return static_cast<std::uintptr_t>(registers[REG_RIP]);
}

// The call pushed its return address on top of the stack.
std::uintptr_t stepOutOfBadCall(void* context) {
  auto& registers = static_cast<ucontext_t*>(context)->uc_mcontext.gregs;
  std::uintptr_t caller = 0;
  std::memcpy(&caller, reinterpret_cast<const void*>(registers[REG_RSP]), sizeof caller);
  if (!moduleAt(caller)) return 0;
  registers[REG_RIP] = static_cast<greg_t>(caller);
  registers[REG_RSP] += sizeof caller;
  return caller;
}

#elif defined(__aarch64__)

std::uintptr_t interruptedAt(const void* context) {
  return static_cast<const ucontext_t*>(context)->uc_mcontext.pc;
}

// The call left its return address in the link register.
std::uintptr_t stepOutOfBadCall(void* context) {
  auto& machine = static_cast<ucontext_t*>(context)->uc_mcontext;
  const std::uintptr_t caller = machine.regs[30];
  if (!moduleAt(caller)) return 0;
  machine.pc = caller;
  return caller;
}

#else
#error "the crash path does not know the registers of this processor"
#endif

const void* moduleOf(std::uintptr_t address) {
  return moduleAt(address).id;
}

iovec piece(std::string_view text) {
  return {const_cast<char*>(text.data()), text.size()};
}

// sd_journal_sendv is the only call of the journal that is documented as safe in a signal handler.
void writeSystemLog(std::string_view line) {
  if (!hasJournal) {
    const std::array<iovec, 3> pieces{piece("vorli diagnostics: "), piece(line), piece("\n")};
    [[maybe_unused]] const ssize_t written = writev(STDERR_FILENO, pieces.data(), pieces.size());
    return;
  }
  posix::FixedText<32 * 1024> message;
  message.add("MESSAGE=").add(line);
  const std::array<iovec, 5> fields{piece(message.text()), piece("PRIORITY=5"),
                                    piece("SYSLOG_IDENTIFIER=vorli"), piece("SUBSYSTEM=com.kv.vorli"),
                                    piece("CATEGORY=diagnostics")};
  static_assert(LOG_NOTICE == 5);
  sd_journal_sendv(fields.data(), fields.size());
}

}  // namespace

posix::CrashHost crashHost() {
  hasJournal = access("/run/systemd/journal/socket", W_OK) == 0;
  rememberOwnProgram();
  return {.interruptedAt = interruptedAt,
          .stepOutOfBadCall = stepOutOfBadCall,
          .moduleOf = moduleOf,
          .describe = describeFrames,
          .writeSystemLog = writeSystemLog};
}

}  // namespace vorli::linuxhost
