#pragma once

#include "ports/ProcessTable.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>

namespace vorli::desktop_tests {

/// The processes of the private session that this one runs in: whatever else the machine does stays out of
/// the picture.
class SessionProcesses final : public ports::ProcessTable {
 public:
  explicit SessionProcesses(ports::ProcessTable& all) : all_(all) {
    const char* mark = std::getenv("VORLI_SESSION_MARK");
    mark_ = std::string("VORLI_SESSION_MARK=") + (mark ? mark : "none");
  }

  ports::Timebase timebase() override { return all_.timebase(); }

  int listAllPIDs(std::span<std::int32_t> buffer) override {
    const int written = all_.listAllPIDs(buffer);
    if (buffer.empty() || written < 1) return written;
    const auto pids = buffer.first(static_cast<std::size_t>(written) / sizeof(std::int32_t));
    const auto end = std::remove_if(pids.begin(), pids.end(), [this](auto pid) { return !isOurs(pid); });
    return static_cast<int>(static_cast<std::size_t>(end - pids.begin()) * sizeof(std::int32_t));
  }

  bool readTaskInfo(std::int32_t pid, ports::ProcessTaskInfo& info) override {
    return all_.readTaskInfo(pid, info);
  }
  bool readBSDInfo(std::int32_t pid, ports::ProcessBSDInfo& info) override {
    return all_.readBSDInfo(pid, info);
  }
  const std::optional<SharedText>& executablePath(std::int32_t pid) override {
    return all_.executablePath(pid);
  }
  std::optional<std::uint64_t> exactResidentBytes(std::int32_t pid) override {
    return all_.exactResidentBytes(pid);
  }

 private:
  bool isOurs(std::int32_t pid) const {
    std::ifstream file("/proc/" + std::to_string(pid) + "/environ", std::ios::binary);
    const std::string environment{std::istreambuf_iterator<char>(file), {}};
    const auto at = environment.find(mark_ + '\0');
    return at == 0 || (at != std::string::npos && environment[at - 1] == '\0');
  }

  ports::ProcessTable& all_;
  std::string mark_;
};

}  // namespace vorli::desktop_tests
