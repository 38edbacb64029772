#include "macos/daemon/ProcessPins.h"

#include "contract/HelperProtocol.h"
#include "daemon/SystemError.h"

#include <csignal>
#include <libproc.h>
#include <sys/proc_info.h>

namespace vorli::machost {

namespace {

static_assert(SIGCONT == helper::continueSignal);

std::optional<proc_bsdinfo> identityOf(std::int32_t pid) {
  proc_bsdinfo identity{};
  const int size = proc_pidinfo(pid, PROC_PIDTBSDINFO, 0, &identity, sizeof identity);
  if (size != static_cast<int>(sizeof identity)) return std::nullopt;
  return identity;
}

class DatedProcess final : public daemon::PinnedProcess {
 public:
  DatedProcess(std::int32_t pid, const proc_bsdinfo& identity) : pid_(pid), identity_(identity) {}

  // There is no fourth user id on this system.
  std::optional<std::array<daemon::UserId, 4>> users() override {
    const auto now = identityOf(pid_);
    if (!now) return std::nullopt;
    return std::array<daemon::UserId, 4>{now->pbi_ruid, now->pbi_uid, now->pbi_svuid, now->pbi_uid};
  }

  bool isThere() override {
    const auto now = identityOf(pid_);
    return now && now->pbi_start_tvsec == identity_.pbi_start_tvsec &&
           now->pbi_start_tvusec == identity_.pbi_start_tvusec;
  }

  std::expected<void, daemon::SystemError> resume() override {
    if (!isThere()) return std::unexpected(daemon::systemError(ESRCH));
    if (::kill(pid_, SIGCONT) != 0) return daemon::lastError();
    return {};
  }

 private:
  const std::int32_t pid_;
  const proc_bsdinfo identity_;
};

}  // namespace

std::expected<std::unique_ptr<daemon::PinnedProcess>, daemon::SystemError> ProcessPins::pin(
    std::int32_t pid) {
  const auto identity = identityOf(pid);
  if (!identity) return std::unexpected(daemon::systemError(ESRCH));
  return std::make_unique<DatedProcess>(pid, *identity);
}

}  // namespace vorli::machost
