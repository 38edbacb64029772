#include "contract/HelperProtocol.h"
#include "daemon/DaemonCommands.h"
#include "daemon/FallbackDNSCache.h"
#include "daemon/Lifecycle.h"
#include "daemon/RequestDesk.h"
#include "daemon/SparingDNSCache.h"
#include "daemon/ThreadPool.h"
#include "linux/bus/Library.h"
#include "linux/daemon/BinaryWatch.h"
#include "linux/daemon/BuildIdentity.h"
#include "linux/daemon/BusCallers.h"
#include "linux/daemon/BusDNSCache.h"
#include "linux/daemon/BusLink.h"
#include "linux/daemon/BusLoopScheduler.h"
#include "linux/daemon/CallerAuthority.h"
#include "linux/daemon/DaemonLog.h"
#include "linux/daemon/HelperObject.h"
#include "linux/daemon/KernelMemory.h"
#include "linux/daemon/Narrowing.h"
#include "linux/daemon/PidFileDNSCache.h"
#include "linux/daemon/ProcessPins.h"
#include "linux/daemon/SocketDNSCache.h"
#include "linux/daemon/StartContext.h"
#include "linux/daemon/SystemFolders.h"
#include "posix/FileDescriptor.h"

#include <charconv>
#include <csignal>
#include <cstdio>
#include <exception>
#include <malloc.h>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <sys/signalfd.h>
#include <sys/socket.h>
#include <utility>
#include <vector>

namespace vorli {
namespace {

constexpr std::size_t workerCount = 4;

struct Options {
  double idleSeconds = daemon::Lifecycle::Timing::defaultIdleSeconds;
  bool showVersion = false;
  bool showBuildIdentity = false;
};

std::optional<Options> parse(const std::vector<std::string_view>& arguments) {
  constexpr std::string_view idlePrefix = "--idle-milliseconds=";
  Options options;
  for (auto argument : arguments) {
    if (argument == "--version") {
      options.showVersion = true;
    } else if (argument == "--build-id") {
      options.showBuildIdentity = true;
    } else if (argument.starts_with(idlePrefix)) {
      argument.remove_prefix(idlePrefix.size());
      unsigned milliseconds = 0;
      const auto* end = argument.data() + argument.size();
      const auto parsed = std::from_chars(argument.data(), end, milliseconds);
      if (parsed.ec != std::errc() || parsed.ptr != end) return std::nullopt;
      options.idleSeconds = milliseconds / 1000.0;
    } else {
      return std::nullopt;
    }
  }
  return options;
}

/// Makes large blocks return to the system when they are freed. A message may briefly take 100 MB. By
/// default, freeing such a block raises the allocator's mmap threshold, so later ones are allocated on the
/// heap, where one small block above them keeps them from being returned.
void returnLargeBlocks() {
  ::mallopt(M_MMAP_THRESHOLD, 128 * 1024);
}

/// Blocks the signals before the first thread starts, so that all threads inherit the mask and the loop
/// handles them.
posix::FileDescriptor takeSignals() {
  ::signal(SIGPIPE, SIG_IGN);
  sigset_t signals;
  ::sigemptyset(&signals);
  for (const int number : {SIGTERM, SIGINT, SIGHUP}) ::sigaddset(&signals, number);
  ::pthread_sigmask(SIG_BLOCK, &signals, nullptr);
  return posix::FileDescriptor(::signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK));
}

/// Every DNS cache that the daemon knows, in the order in which they are emptied.
class DNSCaches {
 public:
  DNSCaches(sdbus::IConnection& connection, Scheduler& scheduler, daemon::Workers& workers)
      : resolved_(connection, linuxhost::BusDNSCache::resolved),
        nscd_(scheduler, workers, linuxhost::SocketDNSCache::nscd),
        networkManager_(connection, linuxhost::BusDNSCache::networkManagerDnsmasq),
        dnsmasqOnBus_(connection, linuxhost::BusDNSCache::dnsmasq),
        dnsmasqProcess_(scheduler, workers, linuxhost::PidFileDNSCache::dnsmasq),
        dnsmasqSignal_(scheduler, dnsmasqProcess_),
        dnsmasq_(dnsmasqOnBus_, dnsmasqSignal_),
        unboundSocket_(scheduler, workers, linuxhost::SocketDNSCache::unbound),
        unboundProcess_(scheduler, workers, linuxhost::PidFileDNSCache::unbound),
        unboundSignal_(scheduler, unboundProcess_),
        unbound_(unboundSocket_, unboundSignal_) {}

  std::vector<daemon::DNSCache*> all() {
    return {&resolved_, &nscd_, &networkManager_, &dnsmasq_, &unbound_};
  }

 private:
  linuxhost::BusDNSCache resolved_;
  linuxhost::SocketDNSCache nscd_;
  linuxhost::BusDNSCache networkManager_;
  linuxhost::BusDNSCache dnsmasqOnBus_;
  linuxhost::PidFileDNSCache dnsmasqProcess_;
  daemon::SparingDNSCache dnsmasqSignal_;
  daemon::FallbackDNSCache dnsmasq_;
  linuxhost::SocketDNSCache unboundSocket_;
  linuxhost::PidFileDNSCache unboundProcess_;
  daemon::SparingDNSCache unboundSignal_;
  daemon::FallbackDNSCache unbound_;
};

linuxhost::DaemonLog::Level levelOf(daemon::LogImportance importance) {
  switch (importance) {
    case daemon::LogImportance::detail:
      return linuxhost::DaemonLog::Level::debug;
    case daemon::LogImportance::notice:
      return linuxhost::DaemonLog::Level::notice;
    case daemon::LogImportance::warning:
      return linuxhost::DaemonLog::Level::warning;
  }
  return linuxhost::DaemonLog::Level::warning;
}

/// Two connections, for the reason given at linuxhost::BusTraffic.
struct Connections {
  std::unique_ptr<sdbus::IConnection> calls = sdbus::createSystemBusConnection();
  std::unique_ptr<sdbus::IConnection> questions = sdbus::createSystemBusConnection();

  // Room for about eighty answers. The library asks for 8 MiB, in which answers that the bus does not take
  // would go unnoticed.
  Connections() {
    constexpr int bytes = 32 * 1024;
    ::setsockopt(calls->getEventLoopPollData().fd, SOL_SOCKET, SO_SNDBUF, &bytes, sizeof bytes);
  }
};

/// The assembled daemon.
class Daemon {
 public:
  Daemon(Connections& bus, linuxhost::BusLoopScheduler& loop, linuxhost::DaemonLog& log,
         linuxhost::MemoryLevers levers, double idleSeconds)
      : memory_(std::move(levers)),
        caches_(*bus.questions, loop, workers_),
        flush_(loop, caches_.all()),
        callers_(*bus.questions),
        authority_(*bus.questions),
        commands_(loop, workers_, {memory_, flush_, processes_, folders_}),
        desk_(loop, callers_, authority_, commands_,
              [&log](daemon::LogImportance importance, const std::string& line) {
                log.write(levelOf(importance), line);
              }),
        link_(*bus.calls, loop),
        lifecycle_(
            loop, link_, [this] { return desk_.inFlight(); }, idleSeconds),
        object_(*bus.calls, desk_, [this] { lifecycle_.touch(); }) {
    desk_.onRelease([this] { lifecycle_.requestEnded(); });
  }
  /// Waits for the workers: the members that they use are destroyed afterwards.
  ~Daemon() {
    desk_.onRelease(nullptr);
    workers_.stop();
  }

  bool isBusy() const { return desk_.inFlight() > 0; }
  bool takesCalls() const { return desk_.takesMore(); }

  daemon::Lifecycle& lifecycle() { return lifecycle_; }
  linuxhost::BusLink& link() { return link_; }

 private:
  linuxhost::KernelMemory memory_;
  linuxhost::ProcessPins processes_;
  linuxhost::SystemFolders folders_;
  daemon::ThreadPool workers_{workerCount};
  DNSCaches caches_;
  daemon::DNSFlush flush_;
  linuxhost::BusCallers callers_;
  linuxhost::CallerAuthority authority_;
  daemon::DaemonCommands commands_;
  daemon::RequestDesk desk_;
  linuxhost::BusLink link_;
  daemon::Lifecycle lifecycle_;
  linuxhost::HelperObject object_;
};

/// Returns false when another process owns the daemon's bus name.
bool serve(const Options& options, linuxhost::DaemonLog& log, posix::FileDescriptor& signals,
           linuxhost::MemoryLevers levers) {
  linuxhost::BinaryWatch binary;
  Connections bus;
  linuxhost::BusLoopScheduler loop;
  Daemon daemon(bus, loop, log, std::move(levers), options.idleSeconds);

  loop.watch(signals.get(), [&] {
    signalfd_siginfo information{};
    while (::read(signals.get(), &information, sizeof information) > 0) daemon.lifecycle().leave();
  });
  const auto leaveIfReplaced = [&] {
    if (!binary.isReplaced()) return;
    log.write(linuxhost::DaemonLog::Level::info, "leaving: the program was replaced or removed");
    daemon.lifecycle().leave();
  };
  if (binary.fileDescriptor() >= 0) loop.watch(binary.fileDescriptor(), leaveIfReplaced);
  bool hasName = true;
  daemon.link().requestName(OnceReply<bool>([&](bool isOwner) {
    hasName = isOwner;
    if (!isOwner) loop.stop();
  }));
  daemon.lifecycle().start();
  leaveIfReplaced();  // what happened before the watch began causes no event
  bool isServed = true;
  try {
    isServed = loop.run({.calls = *bus.calls,
                         .questions = *bus.questions,
                         .takesCalls = [&] { return daemon.takesCalls(); },
                         .awaitsAnswers = [&] { return daemon.isBusy(); }});
    if (!isServed) log.write(linuxhost::DaemonLog::Level::warning, "leaving: the bus takes no answers");
  } catch (const sdbus::Error& error) {
    log.write(linuxhost::DaemonLog::Level::error, "the bus is lost: " + error.getName());
  }
  // Abandoned work may hang forever; each piece is safe to interrupt at any point, so exit without waiting.
  // So may the end of a connection whose answers the bus does not take.
  if (daemon.isBusy() || !isServed) ::_exit(0);
  return hasName;
}

int run(const std::vector<std::string_view>& arguments) {
  const auto options = parse(arguments);
  if (!options) {
    std::fputs("usage: vorli-helper [--idle-milliseconds=N] [--version | --build-id]\n", stderr);
    return 2;
  }
  if (options->showVersion) {
    std::printf("vorli-helper %s (contract %s)\n", VORLI_VERSION, std::string(helper::version).c_str());
    return 0;
  }
  if (options->showBuildIdentity) {
    std::puts(linuxhost::buildIdentity().c_str());
    return 0;
  }
  returnLargeBlocks();
  auto signals = takeSignals();
  const auto context = linuxhost::StartContext::take();
  linuxhost::DaemonLog log(context);
  linuxhost::MemoryLevers levers;
  if (const auto narrowed = linuxhost::narrowProcess(); !narrowed) {
    log.write(linuxhost::DaemonLog::Level::error, "cannot give up privileges: " + narrowed.error().text);
    return 1;
  }
  try {
    if (!serve(*options, log, signals, std::move(levers))) {
      log.write(linuxhost::DaemonLog::Level::error, "leaving: the name on the bus is taken or refused");
      return 1;
    }
  } catch (const std::exception& error) {
    log.write(linuxhost::DaemonLog::Level::error, std::string("leaving: ") + error.what());
    return 1;
  }
  return 0;
}

}  // namespace
}  // namespace vorli

int main(int argc, char** argv) {
  return vorli::run({argv + 1, argv + argc});
}
