#include "macos/crash/CrashHost.h"

#include "base/Logger.h"
#include "macos/crash/LoadedImages.h"
#include "macos/crash/UncaughtExceptions.h"
#include "posix/TextBuffer.h"

#include <cstring>
#include <os/log.h>
#include <span>
#include <string_view>
#include <sys/ucontext.h>

namespace vorli::machost {

namespace {

constexpr std::size_t numberWidth = 4;
constexpr std::size_t longestFunctionName = 120;

// Created at the start, because creating one allocates.
os_log_t crashLog;

#if defined(__x86_64__)

std::uintptr_t interruptedAt(const void* context) {
  return static_cast<const ucontext_t*>(context)->uc_mcontext->__ss.__rip;
}

// The call pushed its return address on top of the stack.
std::uintptr_t stepOutOfBadCall(void* context) {
  auto& registers = static_cast<ucontext_t*>(context)->uc_mcontext->__ss;
  std::uintptr_t caller = 0;
  std::memcpy(&caller, reinterpret_cast<const void*>(registers.__rsp), sizeof caller);
  if (!imageAt(caller).header) return 0;
  registers.__rip = caller;
  registers.__rsp += sizeof caller;
  return caller;
}

#elif defined(__arm64__)

std::uintptr_t interruptedAt(const void* context) {
  return static_cast<const ucontext_t*>(context)->uc_mcontext->__ss.__pc;
}

// The call left its return address in the link register.
std::uintptr_t stepOutOfBadCall(void* context) {
  auto& registers = static_cast<ucontext_t*>(context)->uc_mcontext->__ss;
  const std::uintptr_t caller = registers.__lr;
  if (!imageAt(caller).header) return 0;
  registers.__pc = caller;
  return caller;
}

#else
#error "the crash path does not know the registers of this processor"
#endif

const void* moduleOf(std::uintptr_t address) {
  return imageAt(address).header;
}

void addPrintable(std::string_view name, posix::TextBuffer& text) {
  for (const char c : name) text.add(c > ' ' && c < 0x7F ? std::string_view(&c, 1) : "?");
}

// Addresses are those of the file, which are the same in every run.
void addFrame(const posix::StackFrame& frame, posix::TextBuffer& text) {
  const auto image = imageAt(frame.address);
  if (!image.header) {
    text.add("???");
    return;
  }
  addPrintable(image.name, text);
  text.add(" 0x").addHex(frame.address - image.slide);
  const std::uintptr_t call = frame.address - (frame.isReturnAddress ? 1 : 0);
  const auto function = functionAt(image, call);
  if (function.name.empty()) return;
  text.add(" ");
  addPrintable(function.name.substr(0, longestFunctionName), text);
  text.add(" + ").addDecimal(function.offset + (frame.address - call));
}

void describeFrames(std::span<const posix::StackFrame> frames, posix::TextBuffer& text) {
  for (std::size_t index = 0; index < frames.size(); ++index) {
    if (index > 0) text.add("\n");
    posix::FixedText<8> number;
    number.addDecimal(index);
    while (number.text().size() < numberWidth) number.add(" ");
    text.add(number.text());
    addFrame(frames[index], text);
  }
}

// The system does not promise that its log can be written in a signal handler. The line is also in the
// program's own file by then.
void writeSystemLog(std::string_view line) {
  os_log_with_type(crashLog, OS_LOG_TYPE_DEFAULT, "%{public}.*s", static_cast<int>(line.size()), line.data());
}

}  // namespace

posix::CrashHost crashHost() {
  crashLog = os_log_create(logSubsystem.data(), "diagnostics");
  rememberLoadedImages();
  return {.interruptedAt = interruptedAt,
          .stepOutOfBadCall = stepOutOfBadCall,
          .moduleOf = moduleOf,
          .describe = describeFrames,
          .writeSystemLog = writeSystemLog,
          .installExceptionHandler = installExceptionHandler,
          .isSystemException = isSystemException};
}

}  // namespace vorli::machost
