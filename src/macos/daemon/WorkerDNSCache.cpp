#include "macos/daemon/WorkerDNSCache.h"

#include "daemon/SystemError.h"
#include "macos/daemon/Tool.h"

#include <array>
#include <csignal>
#include <cstdint>
#include <cstring>
#include <libproc.h>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace vorli::machost {

namespace {

using Outcome = daemon::DNSCache::Outcome;

constexpr char directoryServiceTool[] = "/usr/bin/dscacheutil";
constexpr std::string_view responderProgram = "/usr/sbin/mDNSResponder";
// Room for processes that start between counting and listing them.
constexpr std::size_t spareProcesses = 64;

Outcome failed(daemon::SystemError error) {
  return {Outcome::State::failed, std::move(error)};
}

bool runs(std::int32_t pid, std::string_view program) {
  std::array<char, PROC_PIDPATHINFO_MAXSIZE> path{};
  if (proc_pidpath(pid, path.data(), static_cast<std::uint32_t>(path.size())) <= 0) return false;
  return std::string_view(path.data(), strnlen(path.data(), path.size())) == program;
}

// Finds the process by its path, because any program may have the same name.
std::optional<std::int32_t> processOf(std::string_view program) {
  const int estimate = proc_listallpids(nullptr, 0);
  if (estimate <= 0) return std::nullopt;
  std::vector<std::int32_t> pids(static_cast<std::size_t>(estimate) + spareProcesses);
  const int count = proc_listallpids(pids.data(), static_cast<int>(pids.size() * sizeof(std::int32_t)));
  if (count <= 0) return std::nullopt;
  pids.resize(static_cast<std::size_t>(count));
  for (const auto pid : pids)
    if (pid > 1 && runs(pid, program)) return pid;
  return std::nullopt;
}

}  // namespace

void WorkerDNSCache::flush(double seconds, OnceReply<Outcome> reply) {
  workers_.post([this, seconds, reply = std::move(reply)]() mutable {
    auto outcome = flush_(seconds);
    scheduler_.post([reply = std::move(reply), outcome = std::move(outcome)]() mutable {
      std::move(reply)(std::move(outcome));
    });
  });
}

Outcome flushDirectoryService(double seconds) {
  auto run = runTool(directoryServiceTool, {"-flushcache"}, seconds);
  if (!run) return failed(std::move(run.error()));
  if (run->exitStatus != 0) return failed({run->exitStatus, std::move(run->output)});
  return {Outcome::State::flushed, {}};
}

Outcome flushResponder(double) {
  const auto responder = processOf(responderProgram);
  if (!responder) return {};
  if (::kill(*responder, SIGHUP) != 0) return failed(daemon::systemError(errno));
  return {Outcome::State::flushed, {}};
}

}  // namespace vorli::machost
