#include "daemon/ContinueProcess.h"

#include "contract/ExitCode.h"

#include <algorithm>
#include <cerrno>

namespace vorli::daemon {

HelperReply continueProcess(ProcessControl& control, const Permit& permit, std::int32_t pid) {
  const auto process = control.pin(pid);
  if (!process) return toReply(process.error());

  const auto users = (*process)->users();
  // Checked after reading the users: if the pinned process is still there, the users were its own.
  if (!(*process)->isThere()) return {ESRCH, "The process has ended"};
  if (!users) return {helper::exit_code::refused, "The users of the process cannot be read"};
  if (!std::ranges::all_of(*users, [&](UserId user) { return user == permit.user(); }))
    return {helper::exit_code::refused, "Not a process of the caller"};

  if (const auto resumed = (*process)->resume(); !resumed) return toReply(resumed.error());
  return {helper::exit_code::done, "Continued"};
}

}  // namespace vorli::daemon
