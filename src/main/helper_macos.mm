#include "daemon/DNSFlush.h"
#include "daemon/DaemonCommands.h"
#include "daemon/Lifecycle.h"
#include "daemon/RequestDesk.h"
#include "daemon/ThreadPool.h"
#include "macos/daemon/ClientAuthority.h"
#include "macos/daemon/ClientRequirement.h"
#include "macos/daemon/Clients.h"
#include "macos/daemon/DaemonLog.h"
#include "macos/daemon/HelperListener.h"
#include "macos/daemon/KernelMemory.h"
#include "macos/daemon/MainQueueScheduler.h"
#include "macos/daemon/ProcessPins.h"
#include "macos/daemon/SystemFolders.h"
#include "macos/daemon/WorkerDNSCache.h"

#include <csignal>
#include <cstdio>
#include <dispatch/dispatch.h>
#include <memory>
#include <optional>
#include <string>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace vorli {
namespace {

constexpr std::size_t workerCount = 4;

// The signal is handled, not ignored: the system's tools that are started would inherit an ignored one.
void handleAndForget(int number) {
  struct sigaction action {};
  action.sa_handler = [](int) {};
  action.sa_flags = SA_RESTART;
  ::sigaction(number, &action, nullptr);
}

/// The assembled daemon. It lives until the process ends: XPC may call into it at any time.
class Daemon {
 public:
  explicit Daemon(const std::optional<std::string>& requirement)
      : directoryService_(loop_, workers_, "directory service", machost::flushDirectoryService),
        responder_(loop_, workers_, "mDNSResponder", machost::flushResponder),
        flush_(loop_, {&directoryService_, &responder_}),
        authority_(requirement ? machost::ClientAuthority::Signature::required
                               : machost::ClientAuthority::Signature::unknown),
        commands_(loop_, workers_, {memory_, flush_, processes_, folders_}),
        desk_(loop_, clients_, authority_, commands_,
              [this](daemon::LogImportance importance, const std::string& line) {
                log_.write(importance, line);
              }),
        listener_(loop_, clients_, sink_, requirement),
        lifecycle_(
            loop_, listener_, [this] { return desk_.inFlight() + listener_.connections(); },
            daemon::Lifecycle::Timing::defaultIdleSeconds) {
    desk_.onRelease([this] { lifecycle_.requestEnded(); });
    if (!requirement)
      log_.write(daemon::LogImportance::warning, "not signed by a team: every program may connect");
  }

  /// Serves until the daemon is idle or the system asks it to end.
  void run() {
    leaveOnTermination();
    listener_.resume();
    lifecycle_.start();
    loop_.run();
  }

 private:
  void leaveOnTermination() {
    handleAndForget(SIGTERM);  // otherwise its default action would come before that of the source
    daemon::Lifecycle* const lifecycle = &lifecycle_;
    dispatch_source_set_event_handler(termination_, ^{
      lifecycle->leave();
    });
    dispatch_resume(termination_);
  }

  machost::MainQueueScheduler loop_;
  machost::DaemonLog log_;
  machost::KernelMemory memory_;
  machost::ProcessPins processes_;
  machost::SystemFolders folders_;
  daemon::ThreadPool workers_{workerCount};
  machost::WorkerDNSCache directoryService_;
  machost::WorkerDNSCache responder_;
  daemon::DNSFlush flush_;
  machost::Clients clients_;
  machost::ClientAuthority authority_;
  daemon::DaemonCommands commands_;
  daemon::RequestDesk desk_;
  const machost::CallSink sink_{
      .called = [this] { loop_.post([this] { lifecycle_.touch(); }); },
      .submit =
          [this](daemon::Request request, OnceReply<HelperReply> reply) {
            loop_.post([this, request = std::move(request), reply = std::move(reply)]() mutable {
              lifecycle_.touch();
              desk_.submit(std::move(request), std::move(reply));
            });
          },
  };
  machost::HelperListener listener_;
  daemon::Lifecycle lifecycle_;
  const dispatch_source_t termination_ =
      dispatch_source_create(DISPATCH_SOURCE_TYPE_SIGNAL, SIGTERM, 0, dispatch_get_main_queue());
};

bool narrowProcess() {
  ::umask(077);
  const rlimit none{0, 0};
  return ::setrlimit(RLIMIT_CORE, &none) == 0;
}

int run() {
  if (::geteuid() != 0) {
    std::fputs("vorli-helper: started by the system only, as root\n", stderr);
    return 2;
  }
  handleAndForget(SIGPIPE);
  if (!narrowProcess()) {
    std::perror("vorli-helper: cannot give up core dumps");
    return 1;
  }
  const auto helperDaemon = std::make_unique<Daemon>(machost::clientRequirement());
  helperDaemon->run();
  // Ends at once: abandoned work may hang forever, and threads of XPC may still call. Each piece of work is
  // safe to interrupt at any point.
  ::_exit(0);
}

}  // namespace
}  // namespace vorli

int main() {
  return vorli::run();
}
