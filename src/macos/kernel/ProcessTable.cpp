#include "macos/kernel/ProcessTable.h"

#include "base/UTF8.h"

#include <cstring>
#include <mach/mach_time.h>
#include <string>
#include <string_view>

namespace vorli::machost {

namespace {

static_assert(sizeof(proc_taskinfo) == 96 && sizeof(proc_bsdinfo) == 136);

// Reads a record; anything but the whole record is a failure.
template <typename Record>
bool readRecord(std::int32_t pid, int flavour, Record& record) {
  record = {};
  return proc_pidinfo(pid, flavour, 0, &record, sizeof record) == static_cast<int>(sizeof record);
}

template <std::size_t size>
std::string_view untilNUL(const char (&text)[size]) {
  return {text, strnlen(text, size)};
}

}  // namespace

ports::Timebase ProcessTable::timebase() {
  mach_timebase_info_data_t base{};
  mach_timebase_info(&base);
  return {.numer = base.numer, .denom = base.denom};
}

int ProcessTable::listAllPIDs(std::span<std::int32_t> buffer) {
  if (buffer.empty()) return proc_listallpids(nullptr, 0);
  return proc_listallpids(buffer.data(), static_cast<int>(buffer.size_bytes()));
}

bool ProcessTable::readTaskInfo(std::int32_t pid, ports::ProcessTaskInfo& info) {
  proc_taskinfo task;
  if (!readRecord(pid, PROC_PIDTASKINFO, task)) return false;
  info = {.residentBytes = task.pti_resident_size,
          .totalUser = task.pti_total_user,
          .totalSystem = task.pti_total_system};
  return true;
}

bool ProcessTable::readBSDInfo(std::int32_t pid, ports::ProcessBSDInfo& info) {
  if (!readRecord(pid, PROC_PIDTBSDINFO, identity_)) return false;
  // Prefers the longer of the two names; a process that never set one has only the shorter.
  const auto name = untilNUL(identity_.pbi_name);
  info = {.parentPID = identity_.pbi_ppid,
          .startSeconds = static_cast<std::int64_t>(identity_.pbi_start_tvsec),
          .name = name.empty() ? untilNUL(identity_.pbi_comm) : name};
  return true;
}

const std::optional<SharedText>& ProcessTable::executablePath(std::int32_t pid) {
  pathBuffer_.fill('\0');
  path_.reset();
  if (proc_pidpath(pid, pathBuffer_.data(), static_cast<std::uint32_t>(pathBuffer_.size())) >= 1) {
    const std::string_view bytes(pathBuffer_.data(), strnlen(pathBuffer_.data(), pathBuffer_.size()));
    path_ = SharedText(repairedUTF8(bytes));
  }
  return path_;
}

std::optional<std::uint64_t> ProcessTable::exactResidentBytes(std::int32_t) {
  return std::nullopt;
}

}  // namespace vorli::machost
