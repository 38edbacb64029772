#pragma once

#include "ports/ProcessTable.h"

#include <cstdint>
#include <optional>
#include <span>

namespace vorli {

/// Passes every question on to another table, so that a test can change single answers.
class ChangedProcessTable : public ports::ProcessTable {
 public:
  ports::Timebase timebase() override { return real_.timebase(); }
  int listAllPIDs(std::span<std::int32_t> buffer) override { return real_.listAllPIDs(buffer); }
  bool readTaskInfo(std::int32_t pid, ports::ProcessTaskInfo& info) override {
    return real_.readTaskInfo(pid, info);
  }
  bool readBSDInfo(std::int32_t pid, ports::ProcessBSDInfo& info) override {
    return real_.readBSDInfo(pid, info);
  }
  const std::optional<SharedText>& executablePath(std::int32_t pid) override {
    return real_.executablePath(pid);
  }
  std::optional<std::uint64_t> exactResidentBytes(std::int32_t pid) override {
    return real_.exactResidentBytes(pid);
  }

 protected:
  explicit ChangedProcessTable(ports::ProcessTable& real) : real_(real) {}

 private:
  ports::ProcessTable& real_;
};

}  // namespace vorli
