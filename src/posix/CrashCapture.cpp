#include "posix/CrashCapture.h"

#include "base/Assert.h"
#include "base/Logger.h"
#include "base/UTF8.h"
#include "posix/CrashReport.h"
#include "posix/TypeName.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <csetjmp>
#include <csignal>
#include <cstdlib>
#include <cxxabi.h>
#include <exception>
#include <pthread.h>
#include <span>
#include <typeinfo>
#include <unistd.h>
#include <unwind.h>

namespace vorli::posix {

namespace {

constexpr Logger diagnosticsLog{logSubsystem, "diagnostics"};

struct FatalSignal {
  int number;
  std::string_view name;
};

// The signals that are handled, in the order of their installation.
constexpr std::array fatalSignals{FatalSignal{SIGABRT, "SIGABRT"}, FatalSignal{SIGILL, "SIGILL"},
                                  FatalSignal{SIGSEGV, "SIGSEGV"}, FatalSignal{SIGBUS, "SIGBUS"},
                                  FatalSignal{SIGFPE, "SIGFPE"},   FatalSignal{SIGTRAP, "SIGTRAP"}};

// Handlers get no context of their own, so their state is global.
struct Capture {
  CrashHost host{};
  CrashReport report;
  pid_t process = 0;
  const void* abortModule = nullptr;
  const void* languageModule = nullptr;  // module of std::terminate
  const void* unwinderModule = nullptr;
  std::terminate_handler systemsTerminate = nullptr;

  std::atomic<const void*> owner = nullptr;  // the thread that is being reported
  volatile std::sig_atomic_t endSignal = 0;
  volatile std::sig_atomic_t followsException = 0;  // the owner's next signal ends an exception
  volatile std::sig_atomic_t timeIsLimited = 0;
  volatile std::sig_atomic_t isInStep = 0;
  sigjmp_buf endOfStep;
};

Capture capture;

const void* thisThread() {
  static thread_local const char mark = 0;
  return &mark;
}

sigset_t setOf(int signal) {
  sigset_t set;
  sigemptyset(&set);
  sigaddset(&set, signal);
  return set;
}

[[noreturn]] void endBy(int signal) {
  struct sigaction standard {};
  standard.sa_handler = SIG_DFL;
  sigaction(signal, &standard, nullptr);
  const sigset_t only = setOf(signal);
  pthread_sigmask(SIG_UNBLOCK, &only, nullptr);
  raise(signal);
  constexpr int shellsWordForSignals = 128;
  _exit(shellsWordForSignals + signal);  // the first process of a container survives its own signals
}

// The owner ends the process, at the latest when the time limit expires.
[[noreturn]] void waitForTheEnd() {
  sigset_t all;
  sigfillset(&all);
  while (true) sigsuspend(&all);
}

void endWhenTimeIsUp(int) {
  if (getpid() == capture.process) endBy(capture.endSignal);
}

// The scheduler cannot be relied on any more, so the kernel keeps the time.
void limitTime() {
  struct sigaction action {};
  action.sa_handler = endWhenTimeIsUp;
  action.sa_flags = SA_ONSTACK;
  sigaction(SIGALRM, &action, nullptr);
  const sigset_t only = setOf(SIGALRM);
  pthread_sigmask(SIG_UNBLOCK, &only, nullptr);
  if (!capture.timeIsLimited) alarm(CrashCapture::longestSeconds);
  capture.timeIsLimited = 1;
}

// True when this thread is the one that reports.
bool takeOwnership() {
  const void* none = nullptr;
  return capture.owner.compare_exchange_strong(none, thisThread());
}

bool isOwner() {
  return capture.owner.load() == thisThread();
}

// A fault inside ends the step, but not the report. Steps own nothing that must be released.
template <typename Step>
void attempt(Step step) {
  if (sigsetjmp(capture.endOfStep, 1) == 0) {
    capture.isInStep = 1;
    step();
  }
  capture.isInStep = 0;
}

void writeEverything() {
  attempt([] { capture.report.describeStack(); });
  attempt([] { capture.report.writeLogLine(); });
  attempt([] { capture.report.writeFile(); });
  attempt([] { capture.report.writeSystemLog(); });
}

void summarizeSignal(int signal) {
  auto& summary = capture.report.summary();
  summary.add("Fatal signal ");
  std::string_view name;
  for (const auto& known : fatalSignals) {
    if (known.number == signal) name = known.name;
  }
  if (name.empty()) {
    summary.add("signal ").addDecimal(static_cast<unsigned>(signal));
  } else {
    summary.add(name);
  }
  summary.add(" (").addDecimal(static_cast<unsigned>(signal)).add(")");
}

bool isOfLanguage(const StackFrame& frame) {
  const void* module = capture.host.moduleOf(frame.address);
  return module && (module == capture.languageModule || module == capture.unwinderModule);
}

// A program that raises its own signal is interrupted deep inside the system's libraries, always at the same
// place. Only the callers distinguish one such crash from another.
void dropFramesOfRaising() {
  capture.report.stack().dropFrontWhile([](const StackFrame& frame) {
    return isOfLanguage(frame) ||
           (capture.abortModule && capture.host.moduleOf(frame.address) == capture.abortModule);
  });
}

bool wasRaised(const siginfo_t& info) {
  return info.si_code <= 0 && info.si_pid == capture.process;
}

void walkInterruptedStack(const siginfo_t& info, void* context) {
  auto& stack = capture.report.stack();
  std::uintptr_t start = capture.host.interruptedAt(context);
  if (!capture.host.moduleOf(start)) {
    stack.add({start, false});
    start = capture.host.stepOutOfBadCall(context);
    if (start == 0) return;
  }
  stack.walk(start);
  if (stack.frames().empty()) stack.add({start, false});
  if (wasRaised(info)) dropFramesOfRaising();
}

void reportSignal(int signal, siginfo_t* info, void* context) {
  capture.endSignal = signal;
  limitTime();
  capture.report.begin("Signal");
  summarizeSignal(signal);
  attempt([&] { walkInterruptedStack(*info, context); });
  writeEverything();
}

bool wasSentByAnotherProcess(const siginfo_t& info) {
  return info.si_code == SI_USER && info.si_pid != capture.process;
}

void onFatalSignal(int signal, siginfo_t* info, void* context) {
  if (getpid() != capture.process) endBy(signal);  // a child process between fork and exec
  if (!takeOwnership()) {
    if (!isOwner()) waitForTheEnd();
    if (wasSentByAnotherProcess(*info)) return;
    if (capture.isInStep) siglongjmp(capture.endOfStep, 1);
    if (!capture.followsException) endBy(capture.endSignal);
  }
  capture.followsException = 0;
  reportSignal(signal, info, context);
  endBy(signal);
}

// The walk begins in this file and continues through the language's library up to where the exception was
// thrown.
void dropFramesOfThrowing() {
  bool isPastHandler = false;
  capture.report.stack().dropFrontWhile([&](const StackFrame& frame) {
    isPastHandler = isPastHandler || isOfLanguage(frame);
    return !isPastHandler || isOfLanguage(frame);
  });
}

// A report is text, and its summary is one line.
void addToSummary(std::string_view text) {
  constexpr std::size_t longest = 500;
  const bool isText = isUTF8(text);
  for (const char c : text.substr(0, longest)) {
    const auto byte = static_cast<unsigned char>(c);
    const bool isPart = byte >= 0x80;
    const bool isKept = byte >= 0x20 && byte != 0x7F && (!isPart || (isText && text.size() <= longest));
    capture.report.summary().add(isKept ? std::string_view(&c, 1) : isPart ? "?" : " ");
  }
}

// Uses `throw;` because rethrowing an exception pointer allocates.
void summarizeException(const std::type_info& type) {
  auto& summary = capture.report.summary();
  summary.add("Uncaught exception: ");
  addTypeName(type.name(), summary);
  summary.add(", ");
  try {
    throw;
  } catch (const std::exception& exception) {
    addToSummary(exception.what());
    // NOLINTNEXTLINE(bugprone-empty-catch): what is no exception of the library has no text to add
  } catch (...) {
  }
}

void walkThrowingStack() {
  capture.report.stack().walk(0);
  dropFramesOfThrowing();
}

// False when an earlier crash of this thread is being reported.
bool beginExceptionReport() {
  if (!takeOwnership()) {
    if (!isOwner()) waitForTheEnd();
    return false;
  }
  capture.endSignal = SIGABRT;
  limitTime();
  capture.report.begin("NSException");
  return true;
}

void endExceptionReport() {
  writeEverything();
  capture.followsException = 1;
}

// The exception knows where it was thrown, even when somebody caught it and threw it once more.
void takeCalls(std::span<const std::uintptr_t> calls) {
  for (const auto address : calls) capture.report.stack().add({address, true});
  if (calls.empty()) walkThrowingStack();
}

void onSystemException(const SystemException& exception) {
  if (getpid() != capture.process || !beginExceptionReport()) return;
  attempt([&exception] {
    capture.report.summary().add("Uncaught exception: ");
    addToSummary(exception.name);
    capture.report.summary().add(", ");
    addToSummary(exception.reason);
  });
  attempt([&exception] { takeCalls(exception.calls); });
  endExceptionReport();
}

void onTerminate() {
  const std::type_info* type = abi::__cxa_current_exception_type();
  if (!type || getpid() != capture.process) return;
  // The system finds out the reason, calls `onSystemException` and ends the process.
  if (capture.host.isSystemException && capture.host.isSystemException(type->name()))
    return capture.systemsTerminate();
  if (!beginExceptionReport()) return;
  attempt([type] { summarizeException(*type); });
  attempt(walkThrowingStack);
  endExceptionReport();
}

// A thread may crash while another one ends the process normally.
void waitForReport() {
  const void* owner = capture.owner.load();
  if (owner && owner != thisThread()) waitForTheEnd();
}

// The first walk of a process takes locks and allocates memory.
void warmUp() {
  StackWalk walk;
  walk.walk(0);
  FixedText<4096> text;
  capture.host.describe(walk.frames(), text);
  capture.host.moduleOf(0);
}

void takeSignals() {
  struct sigaction action {};
  action.sa_sigaction = onFatalSignal;
  // Does not block a signal while it is handled: a second fault would then end the process at once.
  action.sa_flags = SA_SIGINFO | SA_ONSTACK | SA_NODEFER;
  sigfillset(&action.sa_mask);
  for (const auto& signal : fatalSignals) sigdelset(&action.sa_mask, signal.number);
  for (const auto& signal : fatalSignals) sigaction(signal.number, &action, nullptr);
}

const void* moduleOfFunction(void (*function)()) {
  return capture.host.moduleOf(reinterpret_cast<std::uintptr_t>(function));
}

}  // namespace

void CrashCapture::install(const ports::CrashCapturePlan& plan) {
  VORLI_ASSERT(capture.process == 0);
  capture.host = host_;
  if (!capture.report.prepare(plan, host_)) {
    diagnosticsLog.error("crashes are not reported: a path or a text of the reports is too long");
    return;
  }
  capture.process = getpid();
  const void* own = moduleOfFunction(reinterpret_cast<void (*)()>(&onTerminate));
  const auto unlessOwn = [own](const void* module) { return module == own ? nullptr : module; };
  capture.abortModule = unlessOwn(moduleOfFunction(reinterpret_cast<void (*)()>(&std::abort)));
  capture.languageModule = unlessOwn(moduleOfFunction(reinterpret_cast<void (*)()>(&std::terminate)));
  capture.unwinderModule = unlessOwn(moduleOfFunction(reinterpret_cast<void (*)()>(&_Unwind_Backtrace)));
  warmUp();
  std::atexit(waitForReport);
  capture.systemsTerminate = std::set_terminate(onTerminate);
  if (host_.installExceptionHandler) host_.installExceptionHandler(onSystemException);
  takeSignals();
}

}  // namespace vorli::posix
