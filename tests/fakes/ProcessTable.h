#pragma once

#include "ports/ProcessTable.h"

#include <algorithm>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace vorli::fakes {

/// One process of the fake table; a part that is empty cannot be read.
struct FakeProcess {
  std::int32_t pid = 0;
  std::optional<ports::ProcessTaskInfo> taskInfo = ports::ProcessTaskInfo{};
  std::optional<ports::ProcessBSDInfo> bsdInfo = ports::ProcessBSDInfo{};  // without the name
  std::string name;
  std::optional<SharedText> executablePath;
  std::optional<std::uint64_t> exactResidentBytes;
};

/// A table of processes in the order in which a test adds them.
class ProcessTable final : public ports::ProcessTable {
 public:
  ports::Timebase timebase() override { return base; }

  int listAllPIDs(std::span<std::int32_t> buffer) override {
    ++listings;
    if (buffer.empty() && whenListed) whenListed();
    if (buffer.empty()) return slotCount.value_or(static_cast<int>(processes.size()));
    const auto count = std::min(buffer.size(), processes.size());
    for (std::size_t i = 0; i < count; ++i) buffer[i] = processes[i].pid;
    return bytesWritten.value_or(static_cast<int>(count * sizeof(std::int32_t)));
  }

  bool readTaskInfo(std::int32_t pid, ports::ProcessTaskInfo& info) override {
    const auto* process = find(pid);
    if (!process || !process->taskInfo) return false;
    info = *process->taskInfo;
    return true;
  }

  bool readBSDInfo(std::int32_t pid, ports::ProcessBSDInfo& info) override {
    const auto* process = find(pid);
    if (!process || !process->bsdInfo) return false;
    info = *process->bsdInfo;
    info.name = process->name;
    return true;
  }

  const std::optional<SharedText>& executablePath(std::int32_t pid) override {
    static const std::optional<SharedText> none;
    const auto* process = find(pid);
    return process ? process->executablePath : none;
  }

  std::optional<std::uint64_t> exactResidentBytes(std::int32_t pid) override {
    exactReads.push_back(pid);
    const auto* process = find(pid);
    return process ? process->exactResidentBytes : std::nullopt;
  }

  /// Adds a readable process, or changes the one with this identifier.
  FakeProcess& add(std::int32_t pid, std::string name = "process") {
    auto& process = entry(pid);
    process.bsdInfo = ports::ProcessBSDInfo{1, 0, {}};
    process.name = std::move(name);
    return process;
  }

  FakeProcess& entry(std::int32_t pid) {
    for (auto& process : processes) {
      if (process.pid == pid) return process;
    }
    processes.emplace_back().pid = pid;
    return processes.back();
  }

  void remove(std::int32_t pid) {
    std::erase_if(processes, [pid](const auto& process) { return process.pid == pid; });
  }

  std::vector<FakeProcess> processes;
  ports::Timebase base;
  /// Replace the true results of the two calls of a listing.
  std::optional<int> slotCount;
  std::optional<int> bytesWritten;
  int listings = 0;
  std::function<void()> whenListed;  // once for each pass, at its start
  std::vector<std::int32_t> exactReads;

 private:
  // Processes are read in the order of the listing, so the next entry is nearly always the right one.
  const FakeProcess* find(std::int32_t pid) {
    for (std::size_t i = 0; i < processes.size(); ++i) {
      const auto at = (cursor_ + i) % processes.size();
      if (processes[at].pid == pid) {
        cursor_ = at;
        return &processes[at];
      }
    }
    return nullptr;
  }

  std::size_t cursor_ = 0;
};

}  // namespace vorli::fakes
