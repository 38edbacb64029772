// Crashes in the given way: crashing_program WAY FOLDER. A way that waits for another process prints "ready"
// first. Exits with 64 for an unknown way, and with 65 if it survives.

#include "base/Assert.h"
#include "base/Logger.h"
#include "diagnostics/Diagnostics.h"
#include "linux/crash/CrashHost.h"
#include "posix/CalendarClock.h"
#include "posix/CrashCapture.h"
#include "posix/Files.h"
#include "posix/SerialQueue.h"
#include "tests/fakes/ApplicationBundle.h"
#include "tests/fakes/FileViewer.h"
#include "tests/fakes/SystemDescription.h"

#include <array>
#include <atomic>
#include <barrier>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <fcntl.h>
#include <functional>
#include <malloc.h>
#include <map>
#include <memory>
#include <mutex>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <sys/mman.h>
#include <sys/resource.h>
#include <thread>
#include <typeinfo>
#include <unistd.h>
#include <vector>

namespace vorli {
namespace {

/// Files in which one line of the log is never finished.
class FilesThatFault final : public ports::Files {
 public:
  bool createFolder(const std::string& path) override { return files_.createFolder(path); }
  std::optional<std::uint64_t> size(const std::string& path) override { return files_.size(path); }
  std::optional<std::string> read(const std::string& path, std::size_t largest) override {
    return files_.read(path, largest);
  }
  bool append(const std::string& path, std::string_view bytes) override {
    const std::lock_guard guard(lock_);
    const bool isAppended = files_.append(path, bytes);
    if (bytes.find("crash here") != std::string_view::npos) std::raise(SIGSEGV);
    return isAppended;
  }
  bool clear(const std::string& path) override { return files_.clear(path); }
  std::expected<void, std::string> move(const std::string& from, const std::string& to) override {
    return files_.move(from, to);
  }
  std::optional<std::vector<ports::FolderEntry>> list(const std::string& folder) override {
    return files_.list(folder);
  }

 private:
  std::mutex lock_;
  posix::Files files_;
};

volatile int zero = 0;
volatile int sink = 0;
volatile int deepest = 1'000'000'000;
int* volatile nowhere = nullptr;

void writeToNull() {
  *nowhere = 1;
}

[[noreturn]] void waitToBeKilled() {
  std::puts("ready");
  std::fflush(stdout);
  while (true) pause();
}

int overflowTheStack(int depth) {
  if (depth == deepest) return 0;
  volatile char frame[4096];
  frame[depth % 4096] = static_cast<char>(depth);
  return overflowTheStack(depth + 1) + frame[depth % 4096];
}

void readBeyondTheFile(const std::string& folder) {
  const int file = open((folder + "/empty").c_str(), O_RDWR | O_CREAT, 0600);
  sink = *static_cast<volatile char*>(mmap(nullptr, 4096, PROT_READ, MAP_SHARED, file, 0));
}

void divideByZero() {
  sink = deepest / zero;
}

// The allocator notices it while it holds its lock, and aborts.
void damageTheTop() {
  auto* block = static_cast<std::size_t*>(std::malloc(2000));
  block[malloc_usable_size(block) / sizeof *block] = 7;
  nowhere = static_cast<int*>(std::malloc(50'000));
}

// The allocator itself faults, on a list of free blocks that points to nowhere.
void damageAFreeList() {
  auto* first = static_cast<std::uintptr_t*>(std::malloc(40));
  auto* second = static_cast<std::uintptr_t*>(std::malloc(40));
  const volatile auto link = reinterpret_cast<std::uintptr_t>(second);
  std::free(first);
  std::free(second);
  // Links are masked with the address of their own place.
  *reinterpret_cast<volatile std::uintptr_t*>(link) = 0x4141414141410 ^ (link >> 12);
  for (int i = 0; i < 3; ++i) nowhere = static_cast<int*>(std::malloc(40));
}

void faultOnTwoThreadsAtOnce() {
  std::barrier start(2);
  std::thread other([&] {
    start.arrive_and_wait();
    writeToNull();
  });
  start.arrive_and_wait();
  writeToNull();
  other.join();
}

void runOutOfMemory() {
  rlimit limit{};
  getrlimit(RLIMIT_AS, &limit);
  limit.rlim_cur = 1;
  setrlimit(RLIMIT_AS, &limit);
  for (std::size_t size = 1 << 20; size >= 16; size /= 2) {
    while (std::malloc(size)) {
    }
  }
  writeToNull();
}

void runOutOfDescriptors() {
  while (dup(0) >= 0) {
  }
  writeToNull();
}

// The log has its first line, and there is no space for a report.
void runOutOfDisk() {
  std::signal(SIGXFSZ, SIG_IGN);
  rlimit limit{};
  getrlimit(RLIMIT_FSIZE, &limit);
  limit.rlim_cur = 200;
  setrlimit(RLIMIT_FSIZE, &limit);
  writeToNull();
}

// Makes the frame pointer, which the stack walk follows, invalid.
__attribute__((noinline)) void damageTheStack() {
  auto* frame = static_cast<std::uintptr_t*>(__builtin_frame_address(0));
  for (int i = 0; i < 64; ++i) frame[i] = 0x10;
  writeToNull();
}

void callNull() {
  void (*volatile function)() = nullptr;
  function();
}

void crashAtExit() {
  static const struct AtExit {
    ~AtExit() { writeToNull(); }
  } atExit;
  std::exit(0);
}

std::atomic<bool> isReporting = false;

// The process must not exit normally before the report is written.
void exitDuringACrash() {
  isReporting = false;  // frames were described once in advance
  std::thread([] { writeToNull(); }).detach();
  isReporting.wait(false);
  std::exit(0);
}

struct OwnError final : std::runtime_error {
  using runtime_error::runtime_error;
};

void throwOnAThread() {
  std::thread([] { throw OwnError("no\nreason"); }).join();
}

/// An exception of a system that has some of its own: the system alone knows its name and its reason.
struct ObjectException {
  bool hasCalls;
};

__attribute__((noinline)) void throwObject(bool hasCalls) {
  throw ObjectException{hasCalls};
}

void (*handleObject)(const posix::SystemException&) = nullptr;

[[noreturn]] void endAsTheSystemDoes() {
  const std::array<std::uintptr_t, 1> inWriteToNull{reinterpret_cast<std::uintptr_t>(&writeToNull) + 1};
  posix::SystemException exception{"NSRangeException", "index 5\nbeyond the end", {}};
  try {
    throw;
  } catch (const ObjectException& thrown) {
    if (thrown.hasCalls) exception.calls = inWriteToNull;
  }
  handleObject(exception);
  std::abort();
}

struct Program {
  explicit Program(std::string given) : folder(std::move(given)) {}

  std::string folder;
  FilesThatFault files;
  posix::SerialQueue queue;
  posix::CalendarClock calendar;
  fakes::ApplicationBundle bundle;
  fakes::SystemDescription system;
  fakes::FileViewer viewer;
  posix::CrashHost host = linuxhost::crashHost();
  std::unique_ptr<posix::CrashCapture> crashes;
  std::unique_ptr<Diagnostics> diagnostics;
};

// Sleeps until it is killed, for any length of time.
void neverReturn(std::string_view) {
  while (true) pause();
}
void fault(std::string_view) {
  writeToNull();
}

// Half of a report is written when the main thread continues.
void describeSlowly(std::span<const posix::StackFrame> frames, posix::TextBuffer& text) {
  isReporting = true;
  isReporting.notify_all();
  for (int i = 0; i < 20; ++i) {
    text.clear();
    linuxhost::crashHost().describe(frames, text);
  }
}

void haveObjectExceptions(posix::CrashHost& host) {
  std::set_terminate(endAsTheSystemDoes);
  host.installExceptionHandler = [](void (*handler)(const posix::SystemException&)) {
    handleObject = handler;
  };
  host.isSystemException = [](const char* name) {
    return name == std::string_view(typeid(ObjectException).name());
  };
}

void crashInLogWrite(Program& program) {
  program.diagnostics->log("INFO", "crash here");
  while (true) pause();
}

using Ways = std::map<std::string, std::function<void(Program&)>>;

const Ways ways{
    {"null", [](Program&) { writeToNull(); }},
    {"killed-segv", [](Program&) { waitToBeKilled(); }},
    {"killed-abrt", [](Program&) { waitToBeKilled(); }},
    {"killed-ill", [](Program&) { waitToBeKilled(); }},
    {"killed-bus", [](Program&) { waitToBeKilled(); }},
    {"killed-fpe", [](Program&) { waitToBeKilled(); }},
    {"killed-trap", [](Program&) { waitToBeKilled(); }},
    {"illegal", [](Program&) { __builtin_trap(); }},
    {"bus", [](Program& program) { readBeyondTheFile(program.folder); }},
    {"divide", [](Program&) { divideByZero(); }},
    {"trap", [](Program&) { std::raise(SIGTRAP); }},
    {"abort", [](Program&) { std::abort(); }},
    {"assertion", [](Program&) { VORLI_ASSERT(zero == 1); }},
    {"exception", [](Program&) { throw std::runtime_error("because"); }},
    {"thread-exception", [](Program&) { throwOnAThread(); }},
    {"number-exception", [](Program&) { throw 7; }},
    {"object-exception", [](Program&) { throwObject(true); }},
    {"object-exception-without-calls", [](Program&) { throwObject(false); }},
    {"exception-beside-objects", [](Program&) { throw std::runtime_error("because"); }},
    {"overflow", [](Program&) { sink = overflowTheStack(0); }},
    {"thread-overflow", [](Program&) { std::thread([] { sink = overflowTheStack(0); }).join(); }},
    {"malloc-abort", [](Program&) { damageTheTop(); }},
    {"malloc-fault", [](Program&) { damageAFreeList(); }},
    {"log-write", crashInLogWrite},
    {"two-threads", [](Program&) { faultOnTwoThreadsAtOnce(); }},
    {"start", [](Program&) { writeToNull(); }},
    {"exit", [](Program&) { crashAtExit(); }},
    {"exit-race", [](Program&) { exitDuringACrash(); }},
    {"memory", [](Program&) { runOutOfMemory(); }},
    {"descriptors", [](Program&) { runOutOfDescriptors(); }},
    {"disk", [](Program&) { runOutOfDisk(); }},
    {"damaged-stack", [](Program&) { damageTheStack(); }},
    {"null-call", [](Program&) { callNull(); }},
    {"hang", [](Program&) { writeToNull(); }},
    {"second-fault", [](Program&) { writeToNull(); }},
};

void start(Program& program, const std::string& way) {
  program.host.writeSystemLog = [](std::string_view) {};
  if (way == "hang") program.host.writeSystemLog = neverReturn;
  if (way == "second-fault") program.host.writeSystemLog = fault;
  if (way.contains("object")) haveObjectExceptions(program.host);
  if (way == "exit-race") program.host.describe = describeSlowly;
  program.crashes = std::make_unique<posix::CrashCapture>(program.host);
  program.diagnostics = std::make_unique<Diagnostics>(
      DiagnosticsNeeds{program.files, program.queue, program.calendar, program.bundle, program.system,
                       *program.crashes, program.viewer},
      DiagnosticsFolders{program.folder + "/state/Logs", program.folder + "/data/CrashReports"});
  program.diagnostics->install();
}

// The first line is on the disk before the crash, except for a crash during the start.
void waitForFirstLine(Program& program) {
  std::atomic<bool> isWritten = false;
  program.queue.post([&] {
    isWritten = true;
    isWritten.notify_all();
  });
  isWritten.wait(false);
}

}  // namespace
}  // namespace vorli

int main(int argc, char** argv) {
  constexpr int unknownWay = 64;
  constexpr int survived = 65;
  const auto way = argc == 3 ? vorli::ways.find(argv[1]) : vorli::ways.end();
  if (way == vorli::ways.end()) return unknownWay;
  const rlimit noCore{};
  setrlimit(RLIMIT_CORE, &noCore);  // hundreds of dumps would help nobody
  auto& program = *new vorli::Program(argv[2]);
  vorli::start(program, way->first);
  if (way->first != "start") vorli::waitForFirstLine(program);
  way->second(program);
  return survived;
}
