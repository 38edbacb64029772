#include "daemon/DaemonCommands.h"
#include "daemon/FallbackDNSCache.h"
#include "daemon/Lifecycle.h"
#include "daemon/RequestDesk.h"
#include "daemon/ThreadPool.h"
#include "helper/HelperProtocol.h"
#include "linux/daemon/BinaryWatch.h"
#include "linux/daemon/BusCallers.h"
#include "linux/daemon/BusDNSCache.h"
#include "linux/daemon/BusLink.h"
#include "linux/daemon/BusLoopScheduler.h"
#include "linux/daemon/DaemonLog.h"
#include "linux/daemon/FileDescriptor.h"
#include "linux/daemon/HelperObject.h"
#include "linux/daemon/KernelMemory.h"
#include "linux/daemon/Narrowing.h"
#include "linux/daemon/PidFileDNSCache.h"
#include "linux/daemon/PolkitAuthority.h"
#include "linux/daemon/ProcessPins.h"
#include "linux/daemon/SocketDNSCache.h"
#include "linux/daemon/StartContext.h"
#include "linux/daemon/SystemFolders.h"

#include <charconv>
#include <csignal>
#include <cstdio>
#include <exception>
#include <malloc.h>
#include <optional>
#include <sdbus-c++/sdbus-c++.h>
#include <string>
#include <string_view>
#include <sys/signalfd.h>
#include <utility>
#include <vector>

namespace vorli {
namespace {

constexpr std::size_t workerCount = 4;

struct Options {
  double idleSeconds = daemon::Lifecycle::Timing::defaultIdleSeconds;
  bool showVersion = false;
};

std::optional<Options> parse(const std::vector<std::string_view>& arguments) {
  constexpr std::string_view idlePrefix = "--idle-milliseconds=";
  Options options;
  for (auto argument : arguments) {
    if (argument == "--version") {
      options.showVersion = true;
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

/// A message may take 100 MB for a moment. Left to itself the allocator learns from such blocks to keep them
/// on its heap, where one small block behind them holds them for good; mapped blocks go back when they are
/// freed.
void returnLargeBlocks() {
  ::mallopt(M_MMAP_THRESHOLD, 128 * 1024);
}

/// Blocked before the first thread, so that every thread leaves them to the loop.
linuxhost::FileDescriptor takeSignals() {
  ::signal(SIGPIPE, SIG_IGN);
  sigset_t signals;
  ::sigemptyset(&signals);
  for (const int number : {SIGTERM, SIGINT, SIGHUP}) ::sigaddset(&signals, number);
  ::pthread_sigmask(SIG_BLOCK, &signals, nullptr);
  return linuxhost::FileDescriptor(::signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK));
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
        dnsmasq_(dnsmasqOnBus_, dnsmasqProcess_),
        unboundSocket_(scheduler, workers, linuxhost::SocketDNSCache::unbound),
        unboundProcess_(scheduler, workers, linuxhost::PidFileDNSCache::unbound),
        unbound_(unboundSocket_, unboundProcess_) {}

  std::vector<daemon::DNSCache*> all() {
    return {&resolved_, &nscd_, &networkManager_, &dnsmasq_, &unbound_};
  }

 private:
  linuxhost::BusDNSCache resolved_;
  linuxhost::SocketDNSCache nscd_;
  linuxhost::BusDNSCache networkManager_;
  linuxhost::BusDNSCache dnsmasqOnBus_;
  linuxhost::PidFileDNSCache dnsmasqProcess_;
  daemon::FallbackDNSCache dnsmasq_;
  linuxhost::SocketDNSCache unboundSocket_;
  linuxhost::PidFileDNSCache unboundProcess_;
  daemon::FallbackDNSCache unbound_;
};

/// The daemon, put together.
class Daemon {
 public:
  Daemon(sdbus::IConnection& connection, linuxhost::BusLoopScheduler& loop, linuxhost::DaemonLog& log,
         linuxhost::MemoryLevers levers, double idleSeconds)
      : memory_(std::move(levers)),
        caches_(connection, loop, workers_),
        flush_(loop, caches_.all()),
        callers_(connection),
        authority_(connection),
        commands_(loop, workers_, {memory_, flush_, processes_, folders_}),
        desk_(loop, callers_, authority_, commands_,
              [&log](daemon::LogImportance importance, const std::string& line) {
                const bool isWarning = importance == daemon::LogImportance::warning;
                log.write(
                    isWarning ? linuxhost::DaemonLog::Level::warning : linuxhost::DaemonLog::Level::notice,
                    line);
              }),
        link_(connection, loop),
        lifecycle_(
            loop, link_, [this] { return desk_.inFlight(); }, idleSeconds),
        object_(connection, desk_, [this] { lifecycle_.touch(); }) {
    desk_.onRelease([this] { lifecycle_.requestEnded(); });
  }
  /// Waits for the workers: what they use goes after them.
  ~Daemon() {
    desk_.onRelease(nullptr);
    workers_.stop();
  }

  bool isBusy() const { return desk_.inFlight() > 0; }

  daemon::Lifecycle& lifecycle() { return lifecycle_; }

 private:
  linuxhost::KernelMemory memory_;
  linuxhost::ProcessPins processes_;
  linuxhost::SystemFolders folders_;
  daemon::ThreadPool workers_{workerCount};
  DNSCaches caches_;
  daemon::DNSFlush flush_;
  linuxhost::BusCallers callers_;
  linuxhost::PolkitAuthority authority_;
  daemon::DaemonCommands commands_;
  daemon::RequestDesk desk_;
  linuxhost::BusLink link_;
  daemon::Lifecycle lifecycle_;
  linuxhost::HelperObject object_;
};

void serve(const Options& options, linuxhost::DaemonLog& log, linuxhost::FileDescriptor& signals,
           linuxhost::MemoryLevers levers) {
  linuxhost::BinaryWatch binary;
  const auto connection = sdbus::createSystemBusConnection();
  linuxhost::BusLoopScheduler loop;
  Daemon daemon(*connection, loop, log, std::move(levers), options.idleSeconds);

  loop.watch(signals.get(), [&] {
    signalfd_siginfo information{};
    while (::read(signals.get(), &information, sizeof information) > 0) daemon.lifecycle().leave();
  });
  if (binary.fileDescriptor() >= 0) {
    loop.watch(binary.fileDescriptor(), [&] {
      if (!binary.isReplaced()) return;
      log.write(linuxhost::DaemonLog::Level::info, "leaving: the program was replaced or removed");
      daemon.lifecycle().leave();
    });
  }
  // Before the first wait: a call that comes with the name can otherwise lie unseen in the library's queue.
  connection->requestName(std::string(helper::serviceName));
  daemon.lifecycle().start();
  try {
    loop.run(*connection);
  } catch (const sdbus::Error& error) {
    log.write(linuxhost::DaemonLog::Level::error, "the bus is lost: " + error.getName());
  }
  // Work that was given up may hang for ever, and every piece of it may be cut off at any moment.
  if (daemon.isBusy()) ::_exit(0);
}

int run(const std::vector<std::string_view>& arguments) {
  const auto options = parse(arguments);
  if (!options) {
    std::fputs("usage: vorli-helper [--idle-milliseconds=N] [--version]\n", stderr);
    return 2;
  }
  if (options->showVersion) {
    std::printf("vorli-helper %s (contract %s)\n", VORLI_VERSION, helper::version.data());
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
    serve(*options, log, signals, std::move(levers));
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
