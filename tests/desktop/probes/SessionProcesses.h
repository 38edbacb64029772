#pragma once

#include "tests/linux/kernel/ChangedProcessTable.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>

namespace vorli::desktop_tests {

/// Lists only the processes of the private session that this process runs in, so that nothing else on the
/// machine matters.
class SessionProcesses final : public ChangedProcessTable {
 public:
  explicit SessionProcesses(ports::ProcessTable& all) : ChangedProcessTable(all) {
    const char* mark = std::getenv("VORLI_SESSION_MARK");
    mark_ = std::string("VORLI_SESSION_MARK=") + (mark ? mark : "none");
  }

  int listAllPIDs(std::span<std::int32_t> buffer) override {
    const int written = ChangedProcessTable::listAllPIDs(buffer);
    if (buffer.empty() || written < 1) return written;
    const auto pids = buffer.first(static_cast<std::size_t>(written) / sizeof(std::int32_t));
    const auto end = std::remove_if(pids.begin(), pids.end(), [this](auto pid) { return !isOurs(pid); });
    return static_cast<int>(static_cast<std::size_t>(end - pids.begin()) * sizeof(std::int32_t));
  }

 private:
  bool isOurs(std::int32_t pid) const {
    std::ifstream file("/proc/" + std::to_string(pid) + "/environ", std::ios::binary);
    const std::string environment{std::istreambuf_iterator<char>(file), {}};
    const auto at = environment.find(mark_ + '\0');
    return at == 0 || (at != std::string::npos && environment[at - 1] == '\0');
  }

  std::string mark_;
};

}  // namespace vorli::desktop_tests
